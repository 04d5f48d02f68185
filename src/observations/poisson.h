// Poisson-distributed counts from the run's random source, for the noise of simulated patterns.
#pragma once

#include "records/job.h"

namespace corvinet {

// A count drawn from the Poisson distribution of the given mean, as a real
// holding an integer. A mean at or below 0 gives its truncation. Below 30 the
// count is exact (product of uniform deviates); from 30 it is the
// variance-stabilised normal form (sqrt(mean) + g/2)^2 - 0.33 with g by
// Box-Muller (below 87) or by the ratio of uniforms (below 500), and from 500
// mean + sqrt(mean) g. Results are rounded half away from zero and negative
// ones become 0. A mean that fits no method (not a number) writes
// "Erreur GenPoi !!" on the console and gives 0. The uniform deviates come
// from job.random.
float PoissonDeviate(Job& job, float mean);

}  // namespace corvinet

// Background read from the pattern's .bac file and transformed as a*BackRead[(1+c)x+d]+b.
#pragma once

#include "observations/background_terms.h"
#include "records/job.h"

namespace corvinet {

// GLB slots of the coefficients a, b, c, d of the transform.
constexpr int kFileScaleSlot = 22;
constexpr int kFileOffsetSlot = 23;
constexpr int kFileStretchSlot = 24;
constexpr int kFileShiftSlot = 25;

// Reads the .bac file of pattern ip (option 12, unit 12): a title record,
// then one position-height pair per data point in free format, into
// backReadPos/backRead; the unit is closed afterwards. Fewer pairs than NPTS
// (or an unreadable pair) stop the run with the box " End of file *.BAC ".
void ReadBackgroundFile(Job& job, int ip);

// a*BackRead[(1+c)X[i]+d] + b, BackRead being linear between the two entries
// of the file that bracket the point's index (continued beyond the ends).
float FileBackgroundAt(const Pattern& pattern, int i);

// Adds the derivatives with respect to a, b, c and d of the refined ones.
void AddFileBackgroundDerivatives(const Pattern& pattern, int i, float factor,
                                  DerivativeVector& derivative);

}  // namespace corvinet

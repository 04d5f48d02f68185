// The control file named `starting`: a working example written from one of two built-in jobs.
#pragma once

#include "records/job.h"

namespace corvinet {

// The two built-in jobs of the template.
enum class TemplateJob {
  kCeriaXray,         // calculation of the X-ray pattern of CeO2
  kHolmiumNickelate,  // neutron calculation of Ho2BaNiO5 with its magnetic structure
};

// Fills the model with a built-in job.
void FillTemplateJob(Job& job, TemplateJob which);

// Asks the two questions of the template on the console, fills the model
// (or leaves the defaults for the detailed form, which is not available) and
// writes the control file through the normal writer. The caller has reset
// the model and opened unit 1 on the file.
void MakeStartingTemplate(Job& job);

}  // namespace corvinet

// Entry point of the corvinet program.
#include <memory>
#include <string>
#include <vector>

#include "records/job.h"
#include "run/run_driver.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  auto job = std::make_unique<corvinet::Job>();
  return corvinet::Main(*job, arguments);
}

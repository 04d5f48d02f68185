// Callbacks of the Bragg partition built on the reflections and peaks of the point loop.
#include "refine/bragg_profile.h"

#include "refine/order_reflections.h"
#include "refine/point_calculation.h"
#include "refine/reflection_calculation.h"

namespace corvinet {

BraggProfile PointLoopProfile(Job& job, CycleWork& work) {
  BraggProfile profile;
  profile.reach = [&job](int ip, int k) {
    const PeakInterval base = PeakIntervalOf(job, ip, k);
    return PeakReach{base.position, base.left, base.right};
  };
  profile.peak = [&job, &work](int ip, int k, int i) {
    if (work.computedPattern[RingSlot(k)] != ip || work.computedReflection[RingSlot(k)] != k) {
      ComputeReflectionProfile(job, work, ip, k, false);
    }
    return PeakValueAt(job, work.ring[RingSlot(k)], ip, job.patterns[ip].X[i]);
  };
  return profile;
}

BraggProfile PassProfile(Job& job, CycleWork& work) {
  BraggProfile profile = PointLoopProfile(job, work);
  profile.peak = [&job, &work](int ip, int k, int i) {
    const float x = job.patterns[ip].X[i];
    if (work.computedPattern[RingSlot(k)] == ip && work.computedReflection[RingSlot(k)] == k) {
      return PeakValueAt(job, work.ring[RingSlot(k)], ip, x);
    }
    const auto pattern = static_cast<std::size_t>(ip);
    const auto reflection = static_cast<std::size_t>(k);
    if (pattern < work.passEntries.size() && reflection < work.passEntries[pattern].size()) {
      const KeptEntry& kept = work.passEntries[pattern][reflection];
      if (kept.kept) return PeakValueAt(job, kept.entry, ip, x);
    }
    ComputeReflectionProfile(job, work, ip, k, false);
    return PeakValueAt(job, work.ring[RingSlot(k)], ip, x);
  };
  return profile;
}

}  // namespace corvinet

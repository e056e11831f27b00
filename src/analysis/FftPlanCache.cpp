// Cache of FFTW plans by transform length, one per thread.
//
// Twiddle tables live as long as some plan uses them, so keeping the plans of several lengths makes
// a return to an earlier length free of any set-up. Each thread keeps its own plans, so looking one
// up needs no lock; only making and releasing them goes through the planner's lock.
#include "analysis/FftPlanCache.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <vector>

#include "analysis/FftPlanner.h"

namespace nvdl::analysis {
namespace {

constexpr size_t kCachedLengths = 8;

struct PlansDeleter {
    void operator()(FftPlans* plans) const
    {
        for (fftwf_plan plan : {plans->forward, plans->backward, plans->forwardUnaligned, plans->backwardUnaligned})
            releaseFftPlan(plan);
        delete plans;
    }
};

using PlansPtr = std::unique_ptr<FftPlans, PlansDeleter>;

// Most recently used first.
std::vector<PlansPtr>& cache()
{
    thread_local std::vector<PlansPtr> entries;
    return entries;
}

fftwf_plan planInSlot(fftwf_plan& slot, FftKind kind, long n, bool aligned)
{
    if (slot == nullptr)
        slot = makeFftPlan(kind, n, aligned);
    return slot;
}

}  // namespace

FftPlans* fftPlansFor(long n)
{
    if (n < 1 || n > INT_MAX)
        return nullptr;
    std::vector<PlansPtr>& entries = cache();
    auto found = std::find_if(entries.begin(), entries.end(), [n](const PlansPtr& p) { return p->n == n; });
    if (found != entries.end()) {
        std::rotate(entries.begin(), found, found + 1);
        return entries.front().get();
    }
    if (entries.size() == kCachedLengths)
        entries.pop_back();
    PlansPtr plans(new FftPlans);
    plans->n = n;
    entries.insert(entries.begin(), std::move(plans));
    return entries.front().get();
}

fftwf_plan forwardPlan(FftPlans& plans, bool aligned)
{
    return planInSlot(aligned ? plans.forward : plans.forwardUnaligned, FftKind::Forward, plans.n, aligned);
}

fftwf_plan backwardPlan(FftPlans& plans, bool aligned)
{
    return planInSlot(aligned ? plans.backward : plans.backwardUnaligned, FftKind::Backward, plans.n, aligned);
}

}  // namespace nvdl::analysis

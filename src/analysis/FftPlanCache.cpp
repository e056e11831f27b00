// Cache of FFTW plans by transform length.
//
// Planner choice, measured on this project's build machine (single precision, real transforms):
// FFTW_ESTIMATE builds a plan in about 3 ms at 65536 points, 12 ms at 2^20 and 40 ms at 2^22, most
// of it the twiddle tables, while FFTW_MEASURE and above take tens of seconds at 2^20. A user's
// first transform of a new block size must not stall, so plans are estimated. Twiddle tables live
// as long as some plan uses them, so keeping the plans of several lengths makes a return to an
// earlier length free of any set-up.
#include "analysis/FftPlanCache.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <vector>

namespace nvdl::analysis {
namespace {

constexpr size_t kCachedLengths = 8;
constexpr unsigned kPlannerFlags = FFTW_ESTIMATE;

struct PlansDeleter {
    void operator()(FftPlans* plans) const
    {
        for (fftwf_plan plan : {plans->forward, plans->backward, plans->forwardUnaligned, plans->backwardUnaligned})
            if (plan != nullptr)
                fftwf_destroy_plan(plan);
        delete plans;
    }
};

using PlansPtr = std::unique_ptr<FftPlans, PlansDeleter>;

// Most recently used first.
std::vector<PlansPtr>& cache()
{
    static std::vector<PlansPtr> entries;
    return entries;
}

// Scratch arrays with fftwf_malloc's alignment; an estimating planner does not touch their contents.
struct PlanningArrays {
    explicit PlanningArrays(long n)
        : real(fftwf_alloc_real(static_cast<size_t>(n) + 2)),
          complex(fftwf_alloc_complex(static_cast<size_t>(n) / 2 + 1))
    {
    }
    ~PlanningArrays()
    {
        fftwf_free(real);
        fftwf_free(complex);
    }
    PlanningArrays(const PlanningArrays&) = delete;
    PlanningArrays& operator=(const PlanningArrays&) = delete;
    bool valid() const { return real != nullptr && complex != nullptr; }

    float* real;
    fftwf_complex* complex;
};

unsigned alignmentFlag(bool aligned) { return aligned ? 0u : unsigned(FFTW_UNALIGNED); }

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
    fftwf_plan& slot = aligned ? plans.forward : plans.forwardUnaligned;
    if (slot == nullptr) {
        PlanningArrays arrays(plans.n);
        if (!arrays.valid())
            return nullptr;
        slot = fftwf_plan_dft_r2c_1d(static_cast<int>(plans.n), arrays.real, arrays.complex,
                                     kPlannerFlags | FFTW_PRESERVE_INPUT | alignmentFlag(aligned));
    }
    return slot;
}

fftwf_plan backwardPlan(FftPlans& plans, bool aligned)
{
    fftwf_plan& slot = aligned ? plans.backward : plans.backwardUnaligned;
    if (slot == nullptr) {
        PlanningArrays arrays(plans.n);
        if (!arrays.valid())
            return nullptr;
        slot = fftwf_plan_dft_c2r_1d(static_cast<int>(plans.n), arrays.complex, arrays.real,
                                     kPlannerFlags | FFTW_DESTROY_INPUT | alignmentFlag(aligned));
    }
    return slot;
}

}  // namespace nvdl::analysis

// What the helper programs that read files of strangers allow themselves. Knows nothing of ours.
#pragma once

#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace vt::guarded {

inline bool limitTo(int what, rlim_t value)
{
    const rlimit limit{value, value};
    return setrlimit(static_cast<__rlimit_resource>(what), &limit) == 0;
}

/// So much memory (bytes), no file written, no core; and an end when whoever started it ends.
inline bool limitMyself([[maybe_unused]] rlim_t memoryLimit)
{
#ifdef __SANITIZE_ADDRESS__
    const bool memory = true; // its shadow alone needs more addresses
#else
    const bool memory = limitTo(RLIMIT_AS, memoryLimit);
#endif
    return memory && limitTo(RLIMIT_FSIZE, 0) && limitTo(RLIMIT_CORE, 0) &&
           prctl(PR_SET_PDEATHSIG, SIGKILL) == 0;
}

} // namespace vt::guarded

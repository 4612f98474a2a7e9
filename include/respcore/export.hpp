#pragma once

#if defined(RESPCORE_BUILDING) || defined(RESPCORE_SHARED_BUILD)
#define RESPCORE_API __attribute__((visibility("default")))
#else
#define RESPCORE_API
#endif

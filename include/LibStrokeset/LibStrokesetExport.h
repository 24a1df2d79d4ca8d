#pragma once

/// Marks the classes and interfaces that hosts use. The library is built with hidden
/// symbols, so everything it does not mark stays inside it and out of its ABI.
#if defined(__GNUC__) || defined(__clang__)
#define LIBSTROKESET_API __attribute__((visibility("default")))
#else
#define LIBSTROKESET_API
#endif

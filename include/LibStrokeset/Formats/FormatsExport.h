#pragma once

/// Marks what hosts use of the file formats library. It is built with hidden symbols, like the
/// core library, so its parsers and writers stay out of its ABI.
#if defined(__GNUC__) || defined(__clang__)
#define LIBSTROKESET_FORMATS_API __attribute__((visibility("default")))
#else
#define LIBSTROKESET_FORMATS_API
#endif

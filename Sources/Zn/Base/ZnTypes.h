//===- ZnTypes.h - Fixed-width types shared by every layer -----------------===//
#pragma once
#include <cstddef>
#include <cstdint>
#include <sys/time.h>

/// Signed 32-bit count or index, the same width on every target.
using ZnIndex = int32_t;
/// One UTF-16 code unit.
using ZnUnichar = uint16_t;

/// The system library as the foundation sees it. Assertion texts name it
/// ("(Sys::size_t)this"), so the alias keeps those texts literal.
namespace Sys {
using std::size_t;
using ::gettimeofday;
} // namespace Sys

// SPDX-License-Identifier: GPL-3.0-or-later
// GoogleTest captures the standard error stream in a file on the disk, a new one each time. The
// linker leads the two calls here instead, where memory does.
#include <string>

#include "fuzz/support/reporting.h"

// Their names for the linker, where `testing::internal::X` is led.
void CaptureInMemory() __asm__("__wrap__ZN7testing8internal13CaptureStderrEv");
std::string TakeCaptured() __asm__("__wrap__ZN7testing8internal17GetCapturedStderrB5cxx11Ev");

void CaptureInMemory() { kestan_fuzz::SetErrorsAside(); }

std::string TakeCaptured() { return kestan_fuzz::TakeErrors(); }

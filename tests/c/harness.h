/* SPDX-License-Identifier: GPL-3.0-or-later */
/* A small harness for tests in C. Each test runs in a process of its own, in an empty folder of its
 * own. It fails if an expectation does not hold, if anything is printed, or if a descriptor or the
 * process is lost.
 */
#ifndef KESTAN_TESTS_C_HARNESS_H_
#define KESTAN_TESTS_C_HARNESS_H_

#include <kestan/c.h>
#include <stddef.h>

typedef void (*TestFunction)(void);

/* Makes `function` known to the program's main() under `name`. */
void RegisterTest(const char* name, TestFunction function);

/* Each prints where it stands, and what was found, if it does not hold. Returns whether it does. */
int ExpectTrue(int holds, const char* what, const char* file, int line);
int ExpectNumber(long long expected, long long found, const char* what, const char* file, int line);
int ExpectText(const char* expected, const char* found, size_t length, const char* what,
               const char* file, int line);

/* Ends the test: it has failed. */
void GiveUp(void);

#define TEST(name)                                                                             \
  static void name(void);                                                                      \
  __attribute__((constructor)) static void Register##name(void) { RegisterTest(#name, name); } \
  static void name(void)

#define EXPECT(holds) ExpectTrue((holds) ? 1 : 0, #holds, __FILE__, __LINE__)
#define EXPECT_NUMBER(expected, found) \
  ExpectNumber((long long)(expected), (long long)(found), #found, __FILE__, __LINE__)
#define EXPECT_TEXT(expected, found, length) \
  ExpectText((expected), (found), (length), #found, __FILE__, __LINE__)

/* The same, but the test ends there: what follows needs it. */
#define REQUIRE(holds) ((holds) ? (void)0 : (EXPECT(holds), GiveUp()))
#define REQUIRE_OK(call) (EXPECT_NUMBER(KESTAN_OK, call) ? (void)0 : GiveUp())

#define COUNT_OF(array) (sizeof(array) / sizeof((array)[0]))

#endif /* KESTAN_TESTS_C_HARNESS_H_ */

/* SPDX-License-Identifier: GPL-3.0-or-later */
/* malloc() and its like, of which one call fails. For a program of its own: they are the program's,
 * in place of the C library's.
 */
#ifndef KESTAN_TESTS_C_FAILING_MALLOC_H_
#define KESTAN_TESTS_C_FAILING_MALLOC_H_

/* Lets the allocation number `nth` from now on fail, counted from 1, and none after it. What gdbm
 * asks for is given to it: it ends the process otherwise.
 */
void FailAllocation(long nth);

/* Lets none fail any more. Returns whether the one has failed. */
int StopFailing(void);

/* Returns whether all allocations that there were since FailAllocation() were too few to reach the
 * one. */
int WasNotReached(void);

/* Returns how many blocks are allocated and not freed. */
long BlocksInUse(void);

#endif /* KESTAN_TESTS_C_FAILING_MALLOC_H_ */

// SPDX-License-Identifier: GPL-3.0-or-later
// A shared library that is no module of the command.
extern "C" int AnswerOfForeignModule() { return 42; }

// A shared library that is no module of the command.
extern "C" int AnswerOfForeignModule() { return 42; }

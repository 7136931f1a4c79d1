// What a sanitizer is told, in every program that is built with one: the environment does not reach them all.

extern "C" {

const char* __asan_default_options() { return "detect_stack_use_after_return=1"; }

const char* __ubsan_default_options() { return "print_stacktrace=1"; }

const char* __lsan_default_options() { return "print_suppressions=0"; }

// Memory that the desktop's libraries keep for the life of the process.
const char* __lsan_default_suppressions() {
    return "leak:libglib-2.0\n"
           "leak:libgio-2.0\n"
           "leak:libQt6\n";
}

// Libraries are built without it: it would see what they do to memory, but not their locks.
const char* __tsan_default_options() {
    return "second_deadlock_stack=1:die_after_fork=0:ignore_noninstrumented_modules=1";
}

const char* __tsan_default_suppressions() {
    return "race:libglib-2.0\n"
           "race:libgio-2.0\n"
           "race:libQt6\n";
}
}

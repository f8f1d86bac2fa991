// How the sanitizers behave in every test program, whoever starts it: any finding ends the program with a stack.

extern "C"
{
    const char* __asan_default_options();
    const char* __ubsan_default_options();
    const char* __tsan_default_options();

    __attribute__((visibility("default"))) const char* __asan_default_options()
    {
        return "allocator_may_return_null=1:detect_stack_use_after_return=1:strict_string_checks=1:check_"
               "initialization_order=1";
    }

    __attribute__((visibility("default"))) const char* __ubsan_default_options()
    {
        return "print_stacktrace=1:halt_on_error=1";
    }

    __attribute__((visibility("default"))) const char* __tsan_default_options()
    {
        return "allocator_may_return_null=1:halt_on_error=1:second_deadlock_stack=1";
    }
}

// libcdio's image parsers leak what they allocated when a sheet is refused half-way (a missing
// .bin, for one); those are the library's, not ours, and are left out of a sanitized run's leak check.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libcdio.so\n";
}

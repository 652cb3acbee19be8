// Linked into tests with a window when sanitizers are on, so that shared libraries stay loaded: a leak in an
// OpenGL driver that has been unloaded is reported without a symbol, and no suppression can match it.
extern "C" __attribute__((visibility("default"))) int dlclose(void*) {
    return 0;
}

// Preloaded before the window library: reports when the show's first frame is on the screen and, at its end,
// the peak memory. See start_and_memory.

#include <GLFW/glfw3.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <unistd.h>

namespace {

double now() {
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

double setting(const char* name) {
    const char* text = getenv(name);
    return text ? atof(text) : 0;
}

void reportMemory() {
    char line[256];
    FILE* status = fopen("/proc/self/status", "r");
    while (status && fgets(line, sizeof line, status))
        if (strncmp(line, "VmHWM:", 6) == 0)
            fprintf(stderr, "peak memory: %.1f MB\n", atof(line + 6) / 1024);
    if (status)
        fclose(status);
}

} // namespace

extern "C" void glfwSwapBuffers(GLFWwindow* window) {
    static const auto real = reinterpret_cast<void (*)(GLFWwindow*)>(dlsym(RTLD_NEXT, "glfwSwapBuffers"));
    static const double start = setting("BENCH_START"), seconds = setting("BENCH_SECONDS");
    static long frames = 0;
    static double first = 0;

    real(window);
    if (frames++ == 0) {
        glFinish();
        first = now();
        fprintf(stderr, "start to first frame: %.3f s, of it %.3f s of processor time\n", first - start,
                double(clock()) / CLOCKS_PER_SEC);
    }
    if (now() - first > seconds) {
        fprintf(stderr, "frames a second: %.1f\n", double(frames) / (now() - first));
        reportMemory();
        _exit(0);
    }
}

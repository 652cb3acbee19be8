// Opens a window, draws one frame and closes it. open_windows runs it in a loop.
#include "glfw2.h"

using namespace zentrak::glfw2;

int main() {
    if (!glfwInit() || !glfwOpenWindow(160, 100, 0, 0, 0, 0, 0, 0, GLFW_WINDOW))
        return 1;
    glfwSwapBuffers();
    glfwTerminate();
    return 0;
}

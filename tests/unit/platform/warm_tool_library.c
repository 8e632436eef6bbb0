/* What the stand-in for the media tool is linked with: a library with a destructor. */
#include <unistd.h>

void tellEndOfLibrary(void);

static int tells;

void tellEndOfLibrary(void) {
    tells = 1;
}

__attribute__((destructor)) static void destructorOfTheLibrary(void) {
    static const char text[] = "destructor of a library";
    if (tells && write(1, text, sizeof text - 1) < 0) _exit(1);
}

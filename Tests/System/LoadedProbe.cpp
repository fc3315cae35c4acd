// What the tests of loading load.
#include <unistd.h>

extern "C" [[gnu::visibility("default")]] int Probe() { return getpid() > 0 ? 42 : 0; }

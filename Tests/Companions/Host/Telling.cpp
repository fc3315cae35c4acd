// Beside TestPlugIn.cpp in the plug-ins that say how many of their objects live.
#include <tessio/Host/PlugIn.h>

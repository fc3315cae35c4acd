// What a shared library shows to others.
#pragma once

/// Stands in front of the name of a class or function that other libraries must find: interfaces, whose
/// run-time types are compared between libraries, and the entry points of plug-ins. Everything else is
/// hidden.
#define TESSIO_EXPORT [[gnu::visibility("default")]]

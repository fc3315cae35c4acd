// The version of these headers.
#pragma once

// Set for the major, the minor and the patch version by whoever makes a release; the build takes its version
// from here.
#define TESSIO_VERSION_MAJOR 0
#define TESSIO_VERSION_MINOR 1
#define TESSIO_VERSION_PATCH 0

/// For comparisons by the preprocessor: `#if TESSIO_VERSION >= TESSIO_MAKE_VERSION(0, 2, 0)`.
#define TESSIO_MAKE_VERSION(major, minor, patch) ((major)*1000000 + (minor)*1000 + (patch))
/// The version of the headers that a source is compiled with.
#define TESSIO_VERSION TESSIO_MAKE_VERSION(TESSIO_VERSION_MAJOR, TESSIO_VERSION_MINOR, TESSIO_VERSION_PATCH)

// The whole friendly layer.
#pragma once

#include <tessio/Cxx/DataProvider.h>
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/Error.h>
#include <tessio/Cxx/File.h>
#include <tessio/Cxx/FileState.h>
#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/Load.h>
#include <tessio/Cxx/Result.h>
#include <tessio/Cxx/ResultCodes.h>
#include <tessio/Cxx/ResultNames.h>
#include <tessio/Cxx/Save.h>
#include <tessio/Cxx/Stream.h>
#include <tessio/Cxx/StringDictionary.h>
#include <tessio/Cxx/Text.h>
#include <tessio/Cxx/URI.h>
#include <tessio/Cxx/Update.h>

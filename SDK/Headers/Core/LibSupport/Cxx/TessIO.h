// The whole friendly layer.
#pragma once

#include "Cxx/DataProvider.h"
#include "Cxx/Dictionary.h"
#include "Cxx/Error.h"
#include "Cxx/File.h"
#include "Cxx/FileState.h"
#include "Cxx/Handle.h"
#include "Cxx/Load.h"
#include "Cxx/Result.h"
#include "Cxx/ResultCodes.h"
#include "Cxx/ResultNames.h"
#include "Cxx/Save.h"
#include "Cxx/Stream.h"
#include "Cxx/StringDictionary.h"
#include "Cxx/Text.h"
#include "Cxx/URI.h"
#include "Cxx/Update.h"

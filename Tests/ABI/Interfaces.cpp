// Names every class of the SDK that crosses the border between libraries. What the libraries' own functions
// name is a small part of it: interfaces are reached through the registry, by class id.
#include "CoreRegistry/ICoreRegistry.h"
#include "CoreRegistry/IFactoryGate.h"
#include "CoreString/CoreString.h"
#include "CoreString/StringTokenizer.h"
#include "FileIO/ICopyProgress.h"
#include "FileIO/IFile.h"
#include "FileIO/IFileAccess.h"
#include "FileIO/ISystemDirContainer.h"
#include "Host/Host.h"
#include "Logger/KLoggerLibInterface.h"
#include "TessIO/IAsyncReader.h"
#include "TessIO/IAsyncTask.h"
#include "TessIO/IAsyncWriter.h"
#include "TessIO/IBufferedDataProvider.h"
#include "TessIO/IDataProviderStatus.h"
#include "TessIO/IDataProviderStream.h"
#include "TessIO/IDataProviderStreamStatus.h"
#include "TessIO/IDictionary.h"
#include "TessIO/IPersistentData.h"
#include "TessIO/IRelativeURI.h"
#include "TessIO/IReporter.h"
#include "TessIO/IStringDictionary.h"
#include "TessIO/IURIAuthenticationChallenge.h"
#include "TessIO/IURICredential.h"
#include "TessIO/IURIDataProvider.h"
#include "TessIO/IURIFile.h"
#include "TessIO/IURIRegistry.h"

namespace KORVA::ABI
{
#pragma GCC visibility push(default)
void Show(GUID&) {}
void Show(IObject&) {}
void Show(IClassFactory&) {}
void Show(TInterfacePtr<IObject>&) {}
void Show(COREREGISTRY::ICoreRegistry&) {}
void Show(COREREGISTRY::IFactoryGate&) {}
void Show(STRING::CoreString&) {}
void Show(STRING::StringTokenizer&) {}
void Show(FILE_SYS::ICopyProgress&) {}
void Show(FILE_SYS::IDir&) {}
void Show(FILE_SYS::IFile&) {}
void Show(FILE_SYS::IFileAccess&) {}
void Show(FILE_SYS::ISystemDirContainer&) {}
void Show(HOST::Host&) {}
void Show(HOST::Host::Options&) {}
void Show(KLogRecord&) {}
void Show(KLogSink&) {}
void Show(KLoggerLibInterface&) {}
void Show(IDictionary&) {}
void Show(IStringDictionary&) {}
void Show(IO::IAsyncReader&) {}
void Show(IO::IAsyncTask&) {}
void Show(IO::IAsyncWriter&) {}
void Show(IO::IBufferedDataProvider&) {}
void Show(IO::IDataProvider&) {}
void Show(IO::IDataProviderStatus&) {}
void Show(IO::IDataProviderStream&) {}
void Show(IO::IDataProviderStreamStatus&) {}
void Show(IO::IPersistentData&) {}
void Show(IO::IPersistentDataEx&) {}
void Show(IO::IRelativeURI&) {}
void Show(IO::IReporter&) {}
void Show(IO::IURI&) {}
void Show(IO::IURIAuthenticationChallenge&) {}
void Show(IO::IURICredential&) {}
void Show(IO::IURIDataProvider&) {}
void Show(IO::IURIFile&) {}
void Show(IO::IURIRegistry&) {}
#pragma GCC visibility pop
} // namespace KORVA::ABI

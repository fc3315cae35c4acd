// Names every class of the SDK that crosses the border between libraries. What the libraries' own functions
// name is a small part of it: interfaces are reached through the registry, by class id.
#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/CoreRegistry/IFactoryGate.h>
#include <tessio/CoreString/CoreString.h>
#include <tessio/CoreString/StringTokenizer.h>
#include <tessio/FileIO/ICopyProgress.h>
#include <tessio/FileIO/IFile.h>
#include <tessio/FileIO/IFileAccess.h>
#include <tessio/FileIO/ISystemDirContainer.h>
#include <tessio/Host/Host.h>
#include <tessio/Logger/KLoggerLibInterface.h>
#include <tessio/TessIO/IAsyncReader.h>
#include <tessio/TessIO/IAsyncTask.h>
#include <tessio/TessIO/IAsyncWriter.h>
#include <tessio/TessIO/IBufferedDataProvider.h>
#include <tessio/TessIO/IDataProviderStatus.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IDataProviderStreamStatus.h>
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/IRecordObserver.h>
#include <tessio/TessIO/IRelativeURI.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IStringDictionary.h>
#include <tessio/TessIO/IURIAuthenticationChallenge.h>
#include <tessio/TessIO/IURICredential.h>
#include <tessio/TessIO/IURIDataProvider.h>
#include <tessio/TessIO/IURIFile.h>
#include <tessio/TessIO/IURIRegistry.h>

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
void Show(IO::IRecordObserver&) {}
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

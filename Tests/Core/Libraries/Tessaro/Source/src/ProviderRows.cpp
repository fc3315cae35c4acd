#include "ProviderConformance.h"

namespace KORVA::TESTS
{
namespace
{
Logged ReadOnlyMessage(char const* signature, int line, char const* message)
{
    return {"Core/Libraries/Tessaro/Source/src/DataProvider", signature, line, message};
}

Logged HandleMessage(char const* signature, int line, char const* message)
{
    return {"Core/Libraries/Tessaro/Source/src/Mac/HandleDataProvider", signature, line, message};
}

Logged FileMessage(char const* signature, int line, char const* message)
{
    return {"Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider", signature, line, message};
}

ProviderRow ReadOnlyMemory()
{
    constexpr char kMove[] =
        "virtual ErrCode KORVA::IO::ReadOnlyDataProvider::SetPosition(int64, IDataProvider::Offset)";
    Outcome const writeRefused{
        30,
        {ReadOnlyMessage("virtual OperationId KORVA::IO::ReadOnlyDataProvider::Write(const void *, size_t)",
                         45, "Write called on read only data")}};
    Outcome const sizeRefused{30};
    return {
        .name = "ReadOnlyMemory",
        .kind = ProviderKind::kReadOnlyMemory,
        .writable = false,
        .resizable = false,
        .cutShort = 0,
        .noneLeft = 0,
        .nothingToNull = {13,
                          {ReadOnlyMessage(
                              "virtual OperationId KORVA::IO::ReadOnlyDataProvider::Read(void *, int32 &)",
                              51, "outBuffer == NULL")}},
        .end = 10,
        .threeFromEnd = 7,
        .last = 10,
        .beyondLast = {13,
                       {ReadOnlyMessage(
                           kMove, 97,
                           "The offset supplied is 11 from the start of file but this would set the "
                           "offset beyond the size of the data provider (10).")}},
        .beforeStart = {13,
                        {ReadOnlyMessage(kMove, 109,
                                         "The offset supplied is -1 from the marker 4 but this would set the "
                                         "offset to negative.")}},
        .backTooFar = {13,
                       {ReadOnlyMessage(kMove, 109,
                                        "The offset supplied is -5 from the marker 4 but this would set the "
                                        "offset to negative.")}},
        .unknownOrigin = {13, {ReadOnlyMessage(kMove, 86, "offset type is unknown. Parameter blooper.")}},
        .write = writeRefused,
        .writeNothing = writeRefused,
        .writeNothingFromNull = writeRefused,
        .setSize = sizeRefused,
        .setSizeZero = sizeRefused,
        .sizeAfterZero = 10,
        .setSizeNegative = sizeRefused,
    };
}

ProviderRow MemoryHandle()
{
    constexpr char kMove[] =
        "virtual ErrCode KORVA::IO::HandleDataProvider::SetPosition(int64, IDataProvider::Offset)";
    Outcome const sizeRefused{
        27,
        {HandleMessage("virtual ErrCode KORVA::IO::HandleDataProvider::SetSize(int64)", 173,
                       "Memory handles only support up to 0xFFFFFFFF for size and cannot be negative")}};
    return {
        .name = "MemoryHandle",
        .kind = ProviderKind::kMemoryHandle,
        .writable = true,
        .resizable = true,
        .cutShort = 28,
        .noneLeft = 28,
        .nothingToNull = {0},
        .end = 524288,
        .threeFromEnd = 524285,
        .last = 524288,
        .beyondLast = {13,
                       {HandleMessage(
                           kMove, 205,
                           "Attempted to move buffer position to 524289  when buffer size is 524288")}},
        .beforeStart = {13,
                        {HandleMessage(
                            kMove, 205,
                            "Attempted to move buffer position to -1  when buffer size is 524288")}},
        .backTooFar = {13,
                       {HandleMessage(
                           kMove, 214,
                           "Attempted to move buffer position to -1  when buffer size is 524288")}},
        .unknownOrigin = {0},
        .write = {0},
        .writeNothing = {0},
        .writeNothingFromNull = {0},
        .setSize = {0},
        .setSizeZero = sizeRefused,
        .sizeAfterZero = 10,
        .setSizeNegative = sizeRefused,
    };
}

ProviderRow File()
{
    return {
        .name = "File",
        .kind = ProviderKind::kFile,
        .writable = true,
        .resizable = true,
        .cutShort = 0,
        .noneLeft = 3,
        .nothingToNull = {13,
                          {FileMessage(
                              "virtual OperationId KORVA::IO::FileDataProvider::Read(void *, int32 &)", 480,
                              "outBuffer == NULL")}},
        .end = 10,
        .threeFromEnd = 13,
        .last = std::nullopt,
        .beyondLast = {0},
        .beforeStart = {0},
        .backTooFar = {0},
        .unknownOrigin = {0},
        .write = {0},
        .writeNothing = {0},
        .writeNothingFromNull =
            {13,
             {FileMessage("virtual OperationId KORVA::IO::FileDataProvider::Write(const void *, size_t)", 440,
                          "inBuffer == NULL")}},
        .setSize = {0},
        .setSizeZero = {0},
        .sizeAfterZero = 0,
        .setSizeNegative = {0},
    };
}

/// The same provider with a buffer in front.
ProviderRow Buffered(ProviderRow row, char const* name, IO::BufferMode mode)
{
    row.name = name;
    row.buffer = mode;
    row.readable = mode != IO::kBufferWrites;
    row.writable = mode != IO::kBufferReads;
    row.cutShort = 0;
    row.noneLeft = 0;
    row.nothingToNull = {0};
    row.end = 10;
    row.threeFromEnd = 7;
    row.endsEarly = row.readable;
    row.holdsBack = row.writable;
    // What is wrapped is always moved from its start.
    row.backTooFar = row.beforeStart;
    row.unknownOrigin = {0};
    row.afterUnknownOrigin = 1;
    if (!row.writable)
        row.write = {35,
                     {{"Core/Libraries/Tessaro/Source/src/BufferedDataProvider",
                       "virtual OperationId KORVA::IO::BufferedDataProvider::Write(const void *, size_t)",
                       248, "Write to read only Buffered data provider."}}};
    row.writeNothing = row.write;
    row.writeNothingFromNull = row.write;
    row.keepsAutoFlush = true;
    return row;
}

std::vector<ProviderRow> RowsThatAre(bool ProviderRow::*chosen)
{
    std::vector<ProviderRow> rows = ProviderRows();
    std::erase_if(rows, [chosen](ProviderRow const& row) { return !(row.*chosen); });
    return rows;
}
} // namespace

std::vector<ProviderRow> ProviderRows()
{
    return {ReadOnlyMemory(),
            MemoryHandle(),
            File(),
            Buffered(MemoryHandle(), "ReadBufferedMemory", IO::kBufferReads),
            Buffered(MemoryHandle(), "WriteBufferedMemory", IO::kBufferWrites),
            Buffered(MemoryHandle(), "BufferedMemory", IO::kBufferBoth),
            Buffered(File(), "ReadBufferedFile", IO::kBufferReads),
            Buffered(File(), "WriteBufferedFile", IO::kBufferWrites),
            Buffered(File(), "BufferedFile", IO::kBufferBoth)};
}

std::vector<ProviderRow> ReadableProviderRows() { return RowsThatAre(&ProviderRow::readable); }

std::vector<ProviderRow> WritableProviderRows() { return RowsThatAre(&ProviderRow::writable); }
} // namespace KORVA::TESTS

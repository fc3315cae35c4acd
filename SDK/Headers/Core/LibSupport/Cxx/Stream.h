// The typed stream, with its failures in sight.
#pragma once

#include <tessio/Cxx/DataProvider.h>
#include <tessio/Cxx/DictionaryValues.h>
#include <tessio/Cxx/OpenFile.h>
#include <tessio/Cxx/Records.h>
#include <tessio/Cxx/Text.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/RecordFormat.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

namespace KORVA::CXX
{
/// What a stream writes in as many bytes as it has.
template <class T>
concept PlainStreamValue = Number<T> || std::same_as<T, bool> || std::same_as<T, GUID>;

/// What a stream writes and reads beside objects.
template <class T>
concept StreamValue = PlainStreamValue<T> || std::same_as<T, STRING::CoreString> ||
    std::same_as<T, std::u16string> || std::same_as<T, std::string>;

/// Owns a typed stream over a data provider. The interface's own operators report nothing; this one compares
/// positions around each of them, and remembers the first failure:
///
///     stream << 7 << u"seven" << dictionary;
///     if (auto const written = stream.Status(); !written) …
///
/// `Status` does not tell what a device has no room for: a file holds bytes back. `Flush` and `Close` do.
/// After a failure `<<` and `>>` do nothing. Records are written and read through a stream of their own over
/// the same data; the observer that a program has aggregated on this one (`IID_RECORD_OBSERVER`) is told of
/// them. Copies share the stream and its position; a failure so far goes with the copy, later ones are each
/// one's own. Used by one thread at a time.
class Stream : public Handle<IO::IDataProviderStream>
{
public:
    /// What the data under the stream can be used for.
    enum class Access
    {
        /// Writing is refused here.
        kReadOnly,
        /// Everything is passed on.
        kReadWrite
    };

    /// Takes over the reference. With `kReadOnly` nothing is passed on that would write: a file opened for
    /// reading would never return from it.
    explicit Stream(TInterfacePtr<IO::IDataProviderStream> pointer, Access access = Access::kReadWrite)
        : Handle(std::move(pointer)), mAccess(access)
    {}

    /// A new stream over `provider`, sharing it; at its position and in its byte order.
    static Result<Stream> Over(DataProvider const& provider, Access access = Access::kReadWrite)
    {
        auto stream = DETAIL::StreamOver(*provider);
        if (!stream)
            return stream.error();
        return Stream(*std::move(stream), access);
    }

    /// The data under the stream; `kNotInitialized` when there is none, as after `Close`.
    Result<DataProvider> Provider() const
    {
        TInterfacePtr<IO::IDataProvider> provider;
        if (*this)
            provider = (*this)->GetDataProvider();
        if (!provider)
            return Error(IO::kNotInitialized, "use the stream");
        return DataProvider(std::move(provider));
    }

    /// The first failure of `<<` and `>>`, if there was one.
    Result<void> Status() const { return mError ? Result<void>(*mError) : Result<void>(); }
    /// Forgets it: `<<` and `>>` go on.
    void ClearStatus() { mError.reset(); }

    /// Writes a number, a truth value or an identifier.
    template <PlainStreamValue T>
    Stream& operator<<(T const& value)
    {
        return Note(WriteValue(value, sizeof(T)));
    }

    /// Writes a text, with its length before it. UTF-8 that is not well-formed is `kBadText`, a text of 2^30
    /// units and more `kTooLarge`.
    template <Text T>
    Stream& operator<<(T const& text)
    {
        if (mError)
            return *this;
        Result<STRING::CoreString> const converted = ToCoreString(text);
        if (!converted)
            return Note(converted.error());
        if (converted->size() > IO::kMostStringUnits)
            return Note(Error(kTooLarge, "write the text"));
        return Note(WriteValue(*converted, IO::kStringCountSize + 2 * converted->size()));
    }

    /// Writes the record of an object. `kNotPersistent`, and nothing is written; `kNotSerialized` when the
    /// object's writing threw, or that of anything in it.
    template <class I>
    Stream& operator<<(Handle<I> const& object)
    {
        if (mError)
            return *this;
        Result<DataProvider> const provider = Writable();
        return Note(provider ? DETAIL::WriteRecord(**provider, *object, {"write", "the object"},
                                                   DETAIL::ObserverOn(**this))
                             : Result<void>(provider.error()));
    }

    /// Reads a value. Where it is not there in full, `value` and the position stay: `kEndOfData`.
    template <StreamValue T>
    Stream& operator>>(T& value)
    {
        if (mError)
            return *this;
        Result<T> read = Read<T>();
        if (read)
            value = *std::move(read);
        else
            mError = read.error();
        return *this;
    }

    /// Reads a value. `kEndOfData` when it is not there in full, and the position stays. `std::string` is
    /// UTF-8: `kBadText` for a text that it can't say, behind which the position then is.
    template <StreamValue T>
    Result<T> Read()
    {
        if constexpr (std::same_as<T, long>)
            return Read<std::conditional_t<sizeof(long) == 8, long long, int>>().transform(
                [](auto value) { return static_cast<long>(value); });
        else if constexpr (std::same_as<T, unsigned long>)
            return Read<std::conditional_t<sizeof(long) == 8, unsigned long long, unsigned int>>().transform(
                [](auto value) { return static_cast<unsigned long>(value); });
        else if constexpr (std::same_as<T, std::u16string>)
            return Read<STRING::CoreString>().transform(
                [](STRING::CoreString const& text) { return std::u16string(text.view()); });
        else if constexpr (std::same_as<T, std::string>)
            return Read<STRING::CoreString>().and_then(
                [](STRING::CoreString const& text) { return CXX::ToUTF8(text); });
        else
        {
            Result<DataProvider> const provider = Provider();
            if (!provider)
                return provider.error();
            int64 const start = provider->Position();
            int64 length = sizeof(T);
            if constexpr (std::same_as<T, STRING::CoreString>)
            {
                // The count itself does not come out of the operator.
                Result<int> const count = Read<int>();
                if (!count)
                    return count.error();
                length = IO::kStringCountSize + (*count < 2 ? 0 : static_cast<int64>(*count));
                static_cast<void>((*provider)->SetPosition(start, IO::IDataProvider::kFromStart));
            }
            T value{};
            **this >> value;
            if (provider->Position() - start == length)
                return value;
            static_cast<void>((*provider)->SetPosition(start, IO::IDataProvider::kFromStart));
            int const number = DETAIL::SystemErrorOf(**provider);
            if (number != 0 && provider->Size() - start >= length)
                return DETAIL::SystemFailure(number, IO::kFileSystemFailed, "read a value");
            return Error(IO::kEndOfData, "read a value");
        }
    }

    /// Reads the record of an object. `kEndOfData` at the end, `kNotARecord` and `kTruncated` leave the
    /// position; behind the record are `kUnknownClass`, `kOtherClass` and `kDamaged`.
    template <HandleType T>
    Result<T> Read()
    {
        Result<DataProvider> const provider = Provider();
        if (!provider)
            return provider.error();
        return DETAIL::ReadRecord<T>(**provider, provider->Size(), {"read", "the object"},
                                     {.observer = DETAIL::ObserverOn(**this)});
    }

    /// Reads bytes as they are: see `DataProvider::Read`.
    Result<std::size_t> Read(std::span<std::byte> buffer)
    {
        Result<DataProvider> provider = Provider();
        if (!provider)
            return provider.error();
        return provider->Read(buffer);
    }

    /// Writes bytes as they are: see `DataProvider::Write`. `kNotAllowed` for a stream to read only.
    Result<void> Write(std::span<std::byte const> bytes)
    {
        Result<DataProvider> provider = Writable();
        if (!provider)
            return provider.error();
        return provider->Write(bytes);
    }

    /// Hands all that is held back to the system: see `DataProvider::Flush`. A success where nothing can be
    /// written.
    ///
    ///     Stream stream = File::At(path)->Write().value();
    ///     stream << 7;
    ///     if (auto const written = stream.Close(); !written) …
    Result<void> Flush()
    {
        if (mFile)
            return mFile->Flush();
        Result<DataProvider> provider = Provider();
        if (!provider)
            return provider.error();
        return mAccess == Access::kReadOnly ? Result<void>() : provider->Flush();
    }

    /// The same, then lets go of the data, on failure too. A file is closed when its last copy, and whoever
    /// asked for the `Provider`, has let go. Closing what is closed does nothing.
    ///
    /// A stream of `File::Write` of which nobody asks logs, when the last copy goes, how many bytes are lost.
    Result<void> Close()
    {
        if (!*this)
            return {};
        Result<void> flushed = Flush();
        mFile.reset();
        static_cast<Handle&>(*this) = Handle(TInterfacePtr<IO::IDataProviderStream>());
        return flushed;
    }

private:
    friend class File;

    /// On an open file that messages name by `subject`.
    Stream(TInterfacePtr<IO::IDataProviderStream> pointer, std::string subject) : Stream(std::move(pointer))
    {
        if (Result<DataProvider> provider = Provider())
            mFile = std::make_shared<DETAIL::OpenFile>(*std::move(provider), std::move(subject));
    }

    Result<DataProvider> Writable() const
    {
        if (mAccess == Access::kReadOnly)
            return Error(IO::kNotAllowed, "write");
        return Provider();
    }

    template <class T>
    Result<void> WriteValue(T const& value, std::size_t length)
    {
        if (mError)
            return *mError;
        Result<DataProvider> const provider = Writable();
        if (!provider)
            return provider.error();
        int64 const start = provider->Position();
        if constexpr (std::same_as<T, long>)
            **this << static_cast<std::conditional_t<sizeof(long) == 8, long long, int>>(value);
        else if constexpr (std::same_as<T, unsigned long>)
            **this << static_cast<std::conditional_t<sizeof(long) == 8, unsigned long long, unsigned int>>(
                value);
        else
            **this << value;
        if (provider->Position() - start != static_cast<int64>(length))
            return Error(IO::kWriteFailed, "write a value");
        return {};
    }

    Stream& Note(Result<void> const& result)
    {
        if (!result && !mError)
            mError = result.error();
        return *this;
    }

    Access mAccess;
    std::optional<Error> mError;
    std::shared_ptr<DETAIL::OpenFile> mFile;
};
} // namespace KORVA::CXX

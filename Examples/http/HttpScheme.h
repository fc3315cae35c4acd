// What the plug-in of this folder offers: files of the schemes http and https, to be read.
#pragma once

#include <tessio/ObjectModel/GUID.h>

namespace HTTP
{
/// Class of the file objects (`IURIFile`) that the URI registry makes for both schemes.
///
/// How they differ from what `IURIFile` says:
///
/// - The resource is the text that `IURI::GetAbsoluteString` gives. What may not stand in a URL is escaped;
///   escapes that this text has are kept. A fragment is not sent. Of a URI made by `IURI::Init` that is what
///   its author wrote, escapes included. `IURI::InitRelative` takes escapes, which the text then does not
///   have any more: an escaped `#`, `?` or `%` acts there as a plain one does. Names with a user in them are
///   refused (13): they end up in logs.
/// - Every operation asks the server anew, with HEAD, or with a GET of the first byte where HEAD is
///   refused. Redirections are followed, 10 at most, and never from https to http.
/// - A user name and a password come from an `IURICredential` that the URI aggregates under
///   `IID_URI_CREDENTIAL` (Basic or Digest, whichever the server asks for; over http, whoever is on the way
///   reads a Basic one). They are never sent to another host, port or protocol that a redirection leads to.
/// - Proxies are those that the usual environment variables name.
/// - Where the server refuses access (401, 403) the file object aggregates an `IURIAuthenticationChallenge`
///   under `IID_URI_AUTHENTICATION_CHALLENGE`: how often in a row, the status, and the credential that was
///   tried; null where none was sent to the server that refuses. The next operation that the server grants
///   takes it away. A challenge is not reported.
/// - `Read` answers 26 where there is no such file, 36 where access is refused, 13 for a URI that is no URL
///   of these schemes, and 35 for any other failure.
/// - `Exists` is false for all of these; the challenge and the reporter tell them apart. Sizes and
///   modification dates answer 26 for all of these and where the server does not tell; a creation date is
///   never known.
/// - Nothing is written: `Write` answers 30; `Create` 0 where the file is there and else 25; `Delete` 24;
///   `Copy` 31; the dates' setters 26. Of the attributes the three for reading are set.
/// - Every 35 is logged, and told to the reporter once, with the cause as `detail`: a status of the server
///   (400 and above), or an error number of the system: ETIMEDOUT, ECONNREFUSED, ECONNRESET (the transfer
///   broke off), EHOSTUNREACH (no such host, or no way there), EKEYREJECTED (nobody vouches for the
///   server's certificate), EPROTO (what came was no answer, or contradicts itself), ELOOP (too many
///   redirections), EPROTONOSUPPORT (a redirection to a protocol that is not allowed), ESTALE (the file
///   changed while it was read), EIO (anything else).
inline constexpr GUID IID_HTTP_FILE{
    0x0E31FE58, 0x9557, 0x4CB1, {0xA5, 0xA4, 0x5F, 0x5A, 0xC4, 0x75, 0xFB, 0x5C}};

/// Class of the data providers (`IURIDataProvider`) over such files.
///
/// How they differ from what `IDataProvider` says:
///
/// - One GET is read forward, through a window of 256 KiB: a transfer is held up while that is full. It
///   moves on the caller's thread, and only while an operation waits for bytes. A caller who pauses longer
///   than the server is patient finds the transfer broken off.
/// - `SetPosition` sends nothing. A position in the window costs nothing, one less than 256 KiB ahead is
///   read up to, and any other is asked for with a new request. Where the server serves no ranges, it is
///   read up to from where the transfer stands, or from the start of the file.
/// - A file that has another tag, date or size in a later answer has changed: the read fails.
/// - `Read` answers 3 when it delivers nothing, and also when the transfer fails on the way; `count` is
///   exact then, too. After a failure nothing is read any more and `AtEnd` is true, until `SetPosition`,
///   which tries again.
/// - `Size` of a file whose server does not tell is what is known to be there: it grows until the end has
///   been met. A buffered provider looks no further than that, so don't lay one over such a file. `AtEnd`
///   may have to wait for a byte to come. `kFromEnd` counts backwards, and answers 13 where the size is not
///   known yet. So does a position behind the end.
/// - `InitURIBased` takes the modes 0 and 3, and answers what `IURIFile::Read` does; 30 for other modes.
///   `InitReadOnlyMem` answers 30. `Write` and `SetSize` answer 30.
/// - What the server sends is delivered as it is, also where it is compressed; nothing compressed is asked
///   for.
inline constexpr GUID IID_HTTP_DATAPROVIDER{
    0xF8534B3B, 0x1734, 0x4B9D, {0xBB, 0x5B, 0xE3, 0x3B, 0xA9, 0x69, 0x2E, 0x9B}};

/// Environment variables, looked at when a file object is asked for the first time and when a data provider
/// is opened. Times are whole milliseconds, 1 to 86400000; any other value is logged and passed over.
///
/// Until the connection stands, the search for the host included. That one can't be broken off: an operation
/// that gives up in the midst of it returns when the system's search is over.
inline constexpr char kConnectTimeoutVariable[] = "KORVA_HTTP_CONNECT_TIMEOUT";
inline constexpr int kConnectTimeout = 30000;
/// Without a single byte coming in, while somebody waits for one. Where a server sends to another place, or
/// asks who is there, the time for connecting is added until the next request is out.
inline constexpr char kStallTimeoutVariable[] = "KORVA_HTTP_STALL_TIMEOUT";
inline constexpr int kStallTimeout = 60000;
/// A file of certificates (PEM) that are trusted besides those in the system's directory of certificates.
inline constexpr char kCAFileVariable[] = "KORVA_HTTP_CA_FILE";
} // namespace HTTP

#pragma once
/// Files by descriptor, with what every use of them has to mind in one place: calls that signals
/// interrupt, reads and writes that fall short, and paths that lead to something other than a file.
///
/// Functions return 0 on success, otherwise the errno(3) value. Descriptors are not inherited by commands.

namespace host {

/// Opens an existing regular file. Anything else is refused at once (EISDIR, ENOTSUP), so that a FIFO
/// without a writer or a terminal cannot hold the run. `*descriptor` is -1 on failure.
unsigned int openForReading(const char* path, int* descriptor);

/// Creates or truncates a file; `permissions` are those of a new one, less the umask. Devices and FIFOs
/// are written to as well, but a FIFO that nobody reads is an error (ENXIO) and not waited for.
/// `*descriptor` is -1 on failure.
unsigned int openForWriting(const char* path, unsigned int permissions, int* descriptor);

/// Reads `count` bytes, fewer only at the end of the file. `*received` is right in every case.
unsigned int readFully(int descriptor, void* buffer, unsigned long count, unsigned long* received);

/// Writes all `count` bytes or fails. `*written` is right in every case.
unsigned int writeFully(int descriptor, const void* data, unsigned long count, unsigned long* written);

/// Closes; an error reports what a delayed write came to, the descriptor is gone all the same.
unsigned int closeDescriptor(int descriptor);

}  // namespace host

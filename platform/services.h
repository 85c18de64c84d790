#pragma once
/// Operating-system services: start and end, options, memory, formatting, files.
///
/// This header describes what the core calls; it implements nothing. Behind it stands `platform/host/`
/// (plain Linux), the fake platform of the unit tests, or a site's own build against the product's
/// libraries. Functions return 0 on success unless their comment says otherwise.

/// The version stamp that opens every record handed to the services.
inline constexpr unsigned long OSS_VERSION_STAMP = 0x0A050004;

/// A long option: its name, whether it takes an argument, and the letter that stands for it.
/// A table of them ends with a null name.
struct SqloLongOption {
  const char* name;
  bool takesArgument;
  int letter;
};

/// Where option parsing stands. Start with a zeroed state and hand the same one to every call.
struct SqloOptionState {
  const char* argument;  ///< of the option just returned; for '?' the option as it was typed
  int index;             ///< the parser's own: next element of the argument vector
  int cluster;           ///< the parser's own: place inside a group of short options
  char typed[256];       ///< the parser's own: holds the text of an unknown option, cut if longer
};

extern "C" {

/// Starts the services; once, before any other call of the platform. From then on a reader that goes away and
/// a limit on the size of files are errors of the write, never a signal that ends the run; nothing that is
/// opened takes the place of a standard descriptor that was closed, and writing to standard output is an
/// error if that was; and letter case is that of ASCII for the calling thread, whatever locale a database
/// driver sets.
unsigned int ossOneTimeOnly();

/// Ends the services; once. Only memory is given back, and a connection closed, after it.
void ossTerminate();

/// The next option of the command line: its letter, '?' for an unknown option or one whose argument is
/// missing, -1 at the end. Silent. Unique abbreviations of long names are accepted, operands are skipped,
/// "--" ends the options. `shortOptions` is in getopt(3) form.
int sqlogopt(int count, char* const* arguments, const char* shortOptions, SqloOptionState* state,
             const SqloLongOption* longOptions);

/// Allocates `size` bytes into `*block`; zero-filled when `flags` is 1, contents undefined when it is 0.
/// On failure `*block` is null. `file` and `line` tag the request; `pool` is null.
int _ossMemAlloc(void** block, void* pool, unsigned long size, unsigned int flags, const char* file,
                 unsigned int line);

/// Returns a block of `_ossMemAlloc` and sets `*block` to null.
int _ossMemFree(void** block, unsigned long reserved1, unsigned long reserved2, const char* file,
                unsigned int line);

/// snprintf(3): writes at most `size` bytes with the terminator, returns the length of the whole text.
int ossSnprintf(char* buffer, unsigned long size, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

}  // extern "C"

/// What `OSSHFile::open` needs to know. Two combinations are in use:
/// options 1, access 1, the rest 0: an existing file, for reading;
/// options 16, access 2, sharing 1, permissions 0644: for writing, created when missing, truncated.
struct OSSFileOpenParam {
  unsigned long version;
  const char* path;
  unsigned int options;
  unsigned int access;
  unsigned int sharing;
  unsigned int permissions;
  unsigned int reserved;
};

struct OSSFileWriteParam {
  unsigned long version;
  const char* data;
  unsigned long count;  ///< bytes of `data`
  unsigned int reserved;
};

struct OSSFileReadParam {
  unsigned long version;
  unsigned long count;  ///< bytes wanted
  unsigned int reserved;
};

/// One file. Every member returns 0 on success, otherwise the platform's error code.
/// A file that is still open is closed, silently, by destruction.
class OSSHFile {
 public:
  OSSHFile();
  ~OSSHFile();
  OSSHFile(const OSSHFile&) = delete;
  OSSHFile& operator=(const OSSHFile&) = delete;

  unsigned int open(const OSSFileOpenParam* parameters);
  /// Writes all of the data or fails; `*written` tells how far it came.
  unsigned int write(const OSSFileWriteParam* parameters, unsigned long* written);
  /// Reads up to the wanted count into `buffer`; `*received` is less only at the end of the file.
  unsigned int read(const OSSFileReadParam* parameters, void* buffer, unsigned long* received);
  /// Brings what was written to the disk; what has none succeeds.
  unsigned int sync();
  unsigned int getSize(unsigned long* bytes);
  unsigned int close();

 private:
  long m_handle;
};

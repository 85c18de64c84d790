// Preloaded into the program, fails one of the calls that the program itself makes of a system function:
// MIREL_FAULT="read 3 5" fails the third read with errno 5; an errno of 0 has it do half of its work instead.
// When it comes to that, the file "hit" appears in the working directory. Calls of libraries are left alone,
// but for those of the C++ library, which works for the program.

#include <dlfcn.h>
#include <poll.h>
#include <sys/auxv.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

char s_function[16];
long s_left;  ///< calls until it fails
int s_error;

/// Commands that the program runs are not to be disturbed.
__attribute__((constructor)) void readFault() {
  if (const char* fault = getenv("MIREL_FAULT"))
    std::sscanf(fault, "%15s %ld %d", s_function, &s_left, &s_error);
  unsetenv("LD_PRELOAD");
}

bool isProgram(const void* caller) {
  Dl_info its = {}, program = {};
  const auto* header = reinterpret_cast<const void*>(getauxval(AT_PHDR));
  return dladdr(caller, &its) != 0 && dladdr(header, &program) != 0 &&
         (its.dli_fbase == program.dli_fbase || std::strstr(its.dli_fname, "libstdc++") != nullptr);
}

/// Whether this call fails. One that does half of its work has its count halved.
bool fails(const char* function, const void* caller, std::size_t* count) {
  if (std::strcmp(function, s_function) != 0 || !isProgram(caller) || --s_left != 0)
    return false;
  std::fclose(std::fopen("hit", "w"));
  if (s_error == 0 && count != nullptr)
    *count = (*count + 1) / 2;
  errno = s_error;
  return s_error != 0;
}

}  // namespace

#define INTERPOSE(Result, failure, function, parameters, arguments, count)                        \
  extern "C" __attribute__((visibility("default"))) Result function parameters {                  \
    static const auto real = reinterpret_cast<Result(*) parameters>(dlsym(RTLD_NEXT, #function)); \
    return fails(#function, __builtin_return_address(0), count) ? failure : real arguments;       \
  }

using Bytes = std::size_t;
INTERPOSE(int, -1, open, (const char* path, int flags, unsigned mode), (path, flags, mode), nullptr)
INTERPOSE(int, -1, close, (int file), (file), nullptr)
INTERPOSE(int, -1, fsync, (int file), (file), nullptr)
INTERPOSE(ssize_t, -1, read, (int file, void* to, Bytes count), (file, to, count), &count)
INTERPOSE(ssize_t, -1, write, (int file, const void* from, Bytes count), (file, from, count), &count)
INTERPOSE(void*, throw std::bad_alloc(), _Znwm, (Bytes size), (size), nullptr)
INTERPOSE(void*, nullptr, malloc, (Bytes size) noexcept, (size), nullptr)
INTERPOSE(FILE*, nullptr, popen, (const char* command, const char* mode), (command, mode), nullptr)
INTERPOSE(char*, nullptr, fgets, (char* to, int size, FILE* file), (to, size, file), nullptr)
INTERPOSE(int, -1, socket, (int family, int type, int protocol) noexcept, (family, type, protocol), nullptr)
INTERPOSE(int, -1, connect, (int file, const sockaddr* name, socklen_t size), (file, name, size), nullptr)
INTERPOSE(int, -1, poll, (pollfd * files, nfds_t number, int wait), (files, number, wait), nullptr)
INTERPOSE(ssize_t, -1, send, (int file, const void* from, Bytes count, int flags), (file, from, count, flags),
          &count)
INTERPOSE(ssize_t, -1, recv, (int file, void* to, Bytes count, int flags), (file, to, count, flags), &count)

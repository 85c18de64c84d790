/// The plainest program that reads the files in which a host tells its facts, and prints how long they are.
/// Arguments: the files.

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

int main(int count, char** files) {
  for (int i = 1; i < count; ++i) {
    std::ifstream file(files[i]);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    std::cout << files[i] << ": " << text.size() << '\n';
  }
  return 0;
}

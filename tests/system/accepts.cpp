// Whether two JSON libraries of others take each line of standard input: prints those that one of them
// refuses.
#include <rapidjson/reader.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    rapidjson::Reader reader;
    rapidjson::StringStream text(line.c_str());
    rapidjson::BaseReaderHandler<> nobody;
    if (!nlohmann::json::accept(line) ||
        reader.Parse<rapidjson::kParseValidateEncodingFlag>(text, nobody).IsError())
      std::cout << line << '\n';
  }
}

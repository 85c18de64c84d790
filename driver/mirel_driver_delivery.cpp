#include "driver/mirel_driver_delivery.h"

#include <iostream>

#include "common/mirel_common_console.h"
#include "generator/mirel_generator_template.h"
#include "http/mirel_http_client.h"
#include "platform/services.h"
#include "platform/sockets.h"

namespace {

constexpr char kRule[] = "------------------------------";
/// The code of a path that was lost for want of memory.
constexpr unsigned int kNoPath = ~0U;

mirel_string download(const mirel_string& host, unsigned long port) {
  sqloPdbCommFncInit();
  HttpClient client(host, port);
  std::cout << "Downloading tarnconfig.json from " << host << "..." << std::endl;
  mirel_string text = client.get("/config");
  std::cout << "Done." << std::endl;
  return text;
}

void upload(const mirel_string& result, const mirel_string& host, unsigned long port) {
  HttpClient client(host, port);
  std::cout << "Sending result to " << host << "..." << std::endl;
  const mirel_string response = client.post("/tarn", result);
  std::cout << "Sent result to " << host << "." << std::endl;
  std::cout << "Response" << std::endl << kRule << std::endl;
  std::cout << response << std::endl << kRule << std::endl;
  sqloPdbCommFncTerm();
}

void save(const mirel_string& result, const mirel_string& outfile) {
  if (writeToFile(outfile, result) == 0) {
    std::cout << std::endl << "Written to file: " << outfile << std::endl;
  } else {
    std::cout << std::endl << "There was an error writing to file." << std::endl;
  }
}

}  // namespace

mirel_string readConfig(bool send, const mirel_string& host, unsigned long port) {
  return send ? download(host, port) : mirel_string(kDefaultTemplate);
}

void writeResult(const mirel_string& result, bool send, const mirel_string& host, unsigned long port,
                 bool print, const mirel_string& outfile) {
  if (send) {
    upload(result, host, port);
    return;
  }
  if (print) {
    std::cout << result << std::endl;
  }
  if (outfile.length() > 0 || outfile.lost()) {
    save(result, outfile);
  }
}

unsigned int writeToFile(const mirel_string& path, const mirel_string& text) {
  const OSSFileOpenParam forWriting = {OSS_VERSION_STAMP, path.c_str(), 16, 2, 1, 0644, 0};
  const OSSFileWriteParam whole = {OSS_VERSION_STAMP, text.c_str(), text.length(), 0};
  OSSHFile file;
  const unsigned int opened = path.lost() ? kNoPath : file.open(&forWriting);
  if (opened != 0) {
    return opened;
  }
  unsigned long written = 0;
  if (file.write(&whole, &written) != 0 || written != text.length() || file.sync() != 0) {
    complain("failed to write to the result file");
  }
  return file.close();
}

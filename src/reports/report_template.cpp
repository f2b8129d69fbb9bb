#include "reports/report_template.h"

#include <algorithm>
#include <stdexcept>

#include "text/code_page.h"
#include "text/message_text.h"

namespace quillbox {

void AppendLines(std::string& report, std::string_view lines, std::initializer_list<Gap> gaps) {
  std::size_t done = 0;
  for (std::size_t at; (at = lines.find_first_of("%\n", done)) != std::string_view::npos;) {
    report += lines.substr(done, at - done);
    if (lines[at] == '\n') {
      report += "\r\n";
      done = at + 1;
      continue;
    }
    const std::size_t end = lines.find('%', at + 1);
    const std::string_view name = lines.substr(at + 1, end - at - 1);
    const auto gap = std::find_if(gaps.begin(), gaps.end(), [&](const Gap& known) { return known.first == name; });
    if (end == std::string_view::npos || gap == gaps.end()) {
      throw std::invalid_argument("a report's template has an unknown gap: " + std::string(name));
    }
    report += OneLine(gap->second);
    done = end + 1;
  }
  report += lines.substr(done);
}

void WriteReport(FileSystem& files, SystemFacts& facts, const WinPath& file, const std::string& report) {
  files.WriteFile(file, CodePage(facts.CodePageNumber()).EncodeLossy(report));
}

}  // namespace quillbox

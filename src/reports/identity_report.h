// SPDX-License-Identifier: GPL-3.0-or-later
// The report of what the main window shows: the identities and their folders, the address book, and the files that the
// last search found.
#pragma once

#include <string>
#include <vector>

#include "core/identity_catalogue.h"
#include "reports/report_template.h"
#include "text/win_path.h"

namespace quillbox {

struct IdentityReportFacts {
  std::string created;  ///< when the report was made, as text
  std::vector<IdentityInfo> identities;
  std::string defaultUsername, defaultUserId;
  WinPath addressBookFile;
  std::string selectedFolder;  ///< the identities with this store folder are the selected ones
  std::string fileType;        ///< the pattern of the search ("*.dbx")
  std::vector<std::string> foundFiles;
};

/// What a report says of the identities, without a selection and a search.
IdentityReportFacts FactsOf(const IdentityCatalogue& catalogue, std::string created);

std::string MakeIdentityReport(const IdentityReportFacts& facts, ReportFormat format);

}  // namespace quillbox

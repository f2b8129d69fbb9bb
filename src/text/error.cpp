// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/error.h"

#include <cstdio>
#include <system_error>
#include <utility>

#include "text/message_text.h"

namespace quillbox {
namespace {

std::string Sentence(const std::string& doing, const ErrorPlace& place, const std::string& why) {
  std::string text = ShortName(place.name);
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (place.offset) {
    char hex[32];
    std::snprintf(hex, sizeof hex, "offset 0x%llx", static_cast<unsigned long long>(*place.offset));
    add(hex);
  }
  if (place.line) add("line " + std::to_string(*place.line));
  if (!text.empty()) text += ": ";
  text += why;
  if (!doing.empty()) text += " (while " + doing + ")";
  return OneLine(text);
}

}  // namespace

Error::Error(std::string doing, ErrorPlace place, std::string why)
    : std::runtime_error(Sentence(doing, place, why)),
      doing_(std::move(doing)),
      place_(std::move(place)),
      why_(std::move(why)) {}

std::string Describe(const Error& error) {
  return error.what();
}

std::string SystemReason(int code) {
  return std::generic_category().message(code);
}

}  // namespace quillbox

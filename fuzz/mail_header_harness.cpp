// SPDX-License-Identifier: GPL-3.0-or-later
// A stranger's header: fields, encoded words, dates, and the names of files that come from them. The input's first byte
// selects the code page.
#include "harness.h"
#include "mail/export_names.h"
#include "mail/folder_list.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

void RequireName(const std::string& name, std::size_t limit) {
  Require(!FileNameFault(name), "a name that every file system takes");
  Require(name.size() <= limit && !name.starts_with('.'), "a name is short and not hidden");
}

void RunMailHeader(ByteView input) {
  static const CodePage kWestern(1252), kJapanese(932);
  InputReader reader(input);
  const CodePage& page = reader.Byte() % 2 == 0 ? kWestern : kJapanese;
  const std::string text = TextFrom(reader.Rest());
  HeaderCollector collector;
  for (std::size_t at = 0; at < text.size(); at += 7) collector.Add(std::string_view(text).substr(at, 7));
  const MessageHeader header = ParseHeader(text);
  const MessageHeader collected = ParseHeader(collector.Text());
  Require(header.subject == collected.subject && header.from == collected.from, "pieces make no difference");
  Require(IsInnerText(DecodeWords(text, page).text), "a decoded field is text");
  StoredMessage message;
  CompleteFromHeader(message, header);
  UniqueNames names;
  const std::string stem = EmlStem(FactsOf(message, header, page));
  for (int i = 0; i < 2; ++i) RequireName(names.Take(stem, ".eml"), kMaxNameBytes);
  MailFolder folder;
  folder.name = page.Decode(text);
  for (const MailTarget target : {MailTarget::Thunderbird, MailTarget::Maildir, MailTarget::Files}) {
    RequireName(FolderNameAt(folder, target), kMaxNameBytes);
  }
  if (const auto name = ParseStoreName(text)) Require(!name->folder.empty(), "a folder has a name");
}

std::vector<Seed> MailHeaderSeeds() {
  const auto seed = [](const char* name, const std::string& text) { return Seed{name, BytesFrom(text)}; };
  return {seed("usual",
               "0Subject: Re: =?iso-8859-1?Q?Gr=FC=DFe?= =?utf-8?B?w6Q=?=\r\nFrom: \"A (b)\" <a@b.c>\r\n"
               "Date: Wed, 17 Mar 2004 10:11:12 +0100 (CET)\r\nMessage-ID: <1@a>\r\n\r\n"),
          seed("folded",
               "1Subject:\r\n =?gb2312*zh?B?xOO6ww==?=\r\n\tb\r\nFrom: a@b (c \\) d)\r\nDate: 6 Nov 94 08:49 EST\n"),
          seed("store", "0Gesendete Objekte (12).dbx.bak"), seed("device", "0subject: aux.txt. \n")};
}

}  // namespace

const Harness kMailHeaderHarness = {"mail_header", 2048, RunMailHeader, MailHeaderSeeds};

}  // namespace quillbox

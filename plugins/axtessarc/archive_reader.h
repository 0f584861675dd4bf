// An archive: its members, and their contents one by one.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "helpers/files/byte_sink.h"
#include "plugins/axtessarc/archive_marks.h"
#include "plugins/axtessarc/member.h"
#include "plugins/common/progress.h"
#include "plugins/common/remark.h"
#include "plugins/common/result.h"

namespace tessary::unpack {

// Lists the files of an archive; folders, links and devices are left out. Not for several threads
// at once.
class ArchiveReader {
  public:
    virtual ~ArchiveReader() = default;

    // In the order of the archive. Of a damaged archive, those before the damage; of one that grows
    // out of all proportion, those before and at the point where it does.
    const std::vector<Member>& Members() const { return members_; }

    // Writes the contents of member `index` (which must exist) to `sink`, whatever size the archive
    // claims. Members in ascending order cost each byte of the archive once. Answers
    // kUnknownFormat for encrypted members and methods that cannot be read, kInternalError when
    // the sink refuses; what the sink has got then is of no use. Tells `progress` what the reason
    // is, and after a success what is doubtful about it.
    codec::Result Extract(size_t index, files::ByteSink& sink, codec::Progress& progress);

  protected:
    // As Extract, which tells.
    virtual codec::Result Unpack(size_t index, files::ByteSink& sink,
                                 codec::Progress& progress) = 0;

    std::vector<Member> members_;
    codec::Result listEnd_ = codec::Result::kSuccess;  // why there are not more members
    bool isDoubtful_ = false;                          // a check sum over all members is wrong

  private:
    friend codec::Result OpenArchive(dib::ByteSource& source, const std::string& fileName,
                                     std::unique_ptr<ArchiveReader>& reader, codec::Remark& remark);

    ArchiveMarks marks_;
};

// Reads the list of the archive in `source`, which must outlive the reader. `fileName` is the name
// of the archive without its folders, in UTF-8; the single member of a compressed file is named
// after it. It may be empty. `remark` receives what there is to tell of a failure, and of a list
// that is not whole.
codec::Result OpenArchive(dib::ByteSource& source, const std::string& fileName,
                          std::unique_ptr<ArchiveReader>& reader, codec::Remark& remark);

}  // namespace tessary::unpack

#pragma once

#include <string>

namespace qrx::test {

/// A clip XML as the cameras write it: CR LF line ends, a default namespace.
struct P2ClipXml {
    std::string clipName = "0001AB";
    std::string userClipName = "Interview";
    std::string globalClipId = "060A2B340101010501010D4313000000";
    std::string globalShotId{};  ///< empty: the clip is no piece of a spanned recording
    std::string previous{};      ///< name of the clip before; empty: there is none
    std::string next{};
    std::string editUnit = "<EditUnit>1001/30000</EditUnit>";
    std::string frameRate = "<FrameRate DropFrameFlag=\"true\">29.97i</FrameRate>";
    bool hasTop = true;
    bool hasContent = true;

    [[nodiscard]] std::string text() const {
        std::string xml =
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n"
            "<P2Main xmlns=\"urn:schemas-Professional-Plug-in:P2:ClipMetadata:v3.0\">\r\n";
        const std::string body = "  <ClipName>" + clipName + "</ClipName>\r\n  <GlobalClipID>" +
                                 globalClipId + "</GlobalClipID>\r\n  " + editUnit + "\r\n" +
                                 relation() +
                                 "  <EssenceList><Video><StartTimecode>01:00:00:00"
                                 "</StartTimecode>" +
                                 frameRate +
                                 "</Video></EssenceList>\r\n"
                                 "  <ClipMetadata><UserClipName>" +
                                 userClipName + "</UserClipName></ClipMetadata>\r\n";
        xml += hasContent ? " <ClipContent>\r\n" + body + " </ClipContent>\r\n" : body;
        return xml + "</P2Main>\r\n";
    }

private:
    [[nodiscard]] static std::string connection(const std::string& tag, const std::string& name) {
        if (name.empty()) return {};
        return "<" + tag + "><GlobalClipID>00</GlobalClipID><ClipName>" + name + "</ClipName></" +
               tag + ">";
    }

    [[nodiscard]] std::string relation() const {
        if (globalShotId.empty()) return {};
        return "  <Relation><OffsetInShot>0</OffsetInShot><GlobalShotID>" + globalShotId +
               "</GlobalShotID><Connection>" + (hasTop ? connection("Top", "TOP") : "") +
               connection("Previous", previous) + connection("Next", next) +
               "</Connection></Relation>\r\n";
    }
};

}  // namespace qrx::test

#pragma once

#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::test {

/// "interface.method" of every method in a document of D-Bus introspection XML, in its order.
[[nodiscard]] inline std::vector<std::string> describedMethods(std::string_view xml) {
    static const std::regex element(R"re(<(interface|method) name="([^"]*)")re");
    const std::string text(xml);
    std::vector<std::string> methods;
    std::string interfaceName;
    for (std::sregex_iterator match(text.begin(), text.end(), element), end; match != end;
         ++match) {
        if ((*match)[1] == "interface") {
            interfaceName = (*match)[2];
        } else {
            methods.push_back(interfaceName + "." + (*match)[2].str());
        }
    }
    return methods;
}

/// The methods that are marked as never answering.
[[nodiscard]] inline std::vector<std::string> methodsMarkedNoReply(std::string_view xml) {
    static const std::regex marked(
        R"re(<method name="([^"]*)">\s*<annotation name="org.freedesktop.DBus.Method.NoReply" value="true"/>)re");
    const std::string text(xml);
    std::vector<std::string> methods;
    for (std::sregex_iterator match(text.begin(), text.end(), marked), end; match != end; ++match) {
        methods.push_back((*match)[1]);
    }
    return methods;
}

}  // namespace qrx::test

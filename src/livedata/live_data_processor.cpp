#include <frontpanel_data/live_data_processor.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <frontpanel_data/live_data_parser.h>

#include "livedata/live_data_lines.h"
#include "livedata/shell_text.h"

namespace {

constexpr std::size_t FILE_NAME_SIZE = 256;
constexpr int NOT_RUN = -1;

// A command line. What does not fit is kept cut, for the report, and never runs.
struct Command {
    char text[256] = "";
    bool usable = true;
};

// `allowed` is false when an argument must not become part of a command.
__attribute__((format(printf, 2, 3))) Command compose(bool allowed, const char* format, ...) {
    Command command;
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(command.text, sizeof command.text, format, arguments);
    va_end(arguments);
    command.usable = allowed && length >= 0 && length < static_cast<int>(sizeof command.text);
    return command;
}

int run(const Command& command) {
    return command.usable ? std::system(command.text) : NOT_RUN;
}

bool is_sendable(const char* address, char dataformat) {
    return shell_text::is_card_address(address) && shell_text::is_data_format(dataformat);
}

// Which lines a failed command writes besides the one in the system log.
enum class On_output { NOTHING, ERROR, ERROR_BLANK };

int run_and_report(const char* operation, const Command& command, On_output output) {
    const int status = run(command);
    if (status == 0) {
        return 0;
    }
    LIVE_LOG(operation, "Command[%s] exited with error code [%d]\n", command.text, status);
    if (output != On_output::NOTHING) {
        LIVE_FAILURE(output == On_output::ERROR ? "Error:" : "Error: ", operation,
                     "Command[%s] exited with error code [%d]\n", command.text, status);
    }
    return status;
}

// `start` precedes the text of the line.
int report_exception(const char* operation, const char* start, const char* activity, int number) {
    LIVE_ERROR(operation, "%sAn exception occurred while %s. Exception Nr.[%d]\n", start, activity,
               number);
    LIVE_FAILURE("Error:", operation, "%sAn exception occurred while %s. Exception Nr.[%d]\n",
                 start, activity, number);
    return -1;
}

// Takes the texts out of the parser's list.
int hand_over(LiveJSDataParser::displaylistStruct& list, char*** buffer, uint32_t* size) {
    *buffer = list.dlist;
    *size = static_cast<uint32_t>(list.size);
    list.dlist = nullptr;
    list.size = 0;
    return 0;
}

void hand_over_nothing(char*** buffer, uint32_t* size) {
    *buffer = nullptr;
    *size = 0;
}

int take_combo_box(LiveJSDataParser& parser, char*** buffer, uint32_t* selection, uint32_t* size) {
    LiveJSDataParser::displaylistStruct* const list = parser.parseComboBox();
    if (list != nullptr && list->state >= 0 && list->state < list->size) {
        *selection = static_cast<uint32_t>(list->state);
        return hand_over(*list, buffer, size);
    }
    hand_over_nothing(buffer, size);
    LIVE_FAILURE("Error: ", "getData", "Error in getting dynamic json combobox data\n");
    return -1;
}

int take_tree(LiveJSDataParser& parser, char*** buffer, uint32_t* selection, uint32_t* size) {
    LiveJSDataParser::displaylistStruct* const list = parser.parseTreeAsList();
    if (list != nullptr && list->size > 0) {
        *selection = 0;
        return hand_over(*list, buffer, size);
    }
    hand_over_nothing(buffer, size);
    if (list != nullptr) {
        LIVE_FAILURE("Error: ", "getData", "Error in getting tree dlistStruct[%p] \n",
                     static_cast<void*>(list));
        // Intended: the card answered, and a caller recognises an empty tree by its null array.
        return 0;
    }
    LIVE_FAILURE("Error: ", "getData", "Error in getting dynamic json tree data\n");
    return -1;
}

}  // namespace

Live_Data_Processor::Live_Data_Processor(int local, char* ip, int slot) {
    updateLDP(local, ip, slot);
}

Live_Data_Processor::~Live_Data_Processor() = default;

void Live_Data_Processor::updateLDP(int local, char* ip, int slot) {
    m_slot = slot;
    m_local = local != 0;
    // Made beside the old address, of which `ip` may be a part.
    char address[sizeof m_ip] = "";
    if (m_local) {
        std::strcpy(address, "127.0.0.1");
    } else if (ip == nullptr) {
        LIVE_LINE("updateLDP", "NULL IP Recieved in LDP for slot[%d]\n", slot);
    } else if (std::strlen(ip) < sizeof address) {
        // A longer text stays out whole: its beginning could be the address of another card.
        std::strcpy(address, ip);
    }
    std::memcpy(m_ip, address, sizeof m_ip);
}

int Live_Data_Processor::getDataFromCard(int varId, char dataformat, char* filepath) try {
    const char* const operation = "getDataFromCard";
    std::snprintf(filepath, FILE_NAME_SIZE, "/tmp/%d-json", varId);

    Command command = compose(true, "rm -f %s*", filepath);
    int status = run_and_report(operation, command, On_output::NOTHING);
    if (status != 0) {
        return status;
    }

    // The card answers this one value of "time" only.
    command = compose(is_sendable(m_ip, dataformat),
                      "curl \"http://%s/slot/%d/htdocs/cgi-bin/cfgjson?Get&slotid=%d&%d@%c;"
                      "time&1480088766084\" > %s.gz 2>/dev/null",
                      m_ip, m_slot, m_slot, varId, dataformat, filepath);
    LIVE_LINE(operation, "filepath[%s] Command[%s]\n", filepath, command.text);
    status = run_and_report(operation, command, On_output::NOTHING);
    if (status != 0) {
        return status;
    }

    command = compose(true, "gunzip -d %s.gz", filepath);
    return run_and_report(operation, command, On_output::NOTHING);
} catch (int number) {
    return report_exception("getDataFromCard", "", "fetching the dynamic data", number);
}

int Live_Data_Processor::getData(int varId, char dataformat, int webType, int panelType,
                                 char*** buffer, uint32_t* selectionIdx, uint32_t* size) {
    char name[FILE_NAME_SIZE] = "";
    const int ret = getDataFromCard(varId, dataformat, name);
    LIVE_LINE("getData", "Filename received[%s] firstChar[%c] \n", name, name[0]);
    if (ret != 0 || name[0] == '\0') {
        hand_over_nothing(buffer, size);
        LIVE_FAILURE("Error: ", "getData", "filename[%s] ret[%d] \n", name, ret);
        return ret;
    }

    LiveJSDataParser parser(name, webType, panelType);
    switch (webType) {
        case LiveJSDataParser::COMBOBOX:
            return take_combo_box(parser, buffer, selectionIdx, size);
        case LiveJSDataParser::TREE:
            return take_tree(parser, buffer, selectionIdx, size);
        default:
            LIVE_FAILURE("Error: ", "getData", "Unknown webType JsonFormat [%d]\n", webType);
            // Intended: the fetch itself succeeded. Callers check the type before they ask.
            return ret;
    }
}

int Live_Data_Processor::createLDCommitFile(int varId, char* filename, char* buffer,
                                            int /*convertType*/) try {
    const char* const operation = "createLDCommitFile";
    const bool plain_path = shell_text::is_plain_path(filename);
    const char* const path = filename != nullptr ? filename : "";

    Command command = compose(plain_path, "rm -f %s", path);
    LIVE_LINE(operation, "varId[%d],filename[%s], cmd[%s]\n", varId, path, command.text);
    const int status = run_and_report(operation, command, On_output::ERROR_BLANK);
    if (status != 0) {
        return status;
    }

    std::string body;
    const bool representable = buffer != nullptr && shell_text::make_commit_body(buffer, body);
    command = compose(representable, "echo %s > %s", body.c_str(), path);
    LIVE_LINE(operation, "varId[%d],filename[%s], cmd[%s]\n", varId, path, command.text);
    return run_and_report(operation, command, On_output::ERROR);
} catch (int number) {
    return report_exception("createLDCommitFile", "", "creating live data commit file", number);
}

int Live_Data_Processor::Commit(int varId, char dataformat, char* filename) try {
    const char* const operation = "Commit";
    LIVE_LINE(operation, "varId[%d], filename[%s], dataformat[%c]\n", varId,
              filename != nullptr ? filename : "(null)", dataformat);
    if (filename == nullptr) {
        return -1;
    }

    // Intended: the answer goes to a plain file in /dev, whose name is all capitals. A device whose /dev
    // is read-only thereby never posts.
    Command command = compose(
        is_sendable(m_ip, dataformat) && shell_text::is_plain_path(filename),
        "curl -X POST -d @%s \"http://%s/slot/%d/htdocs/cgi-bin/cfgjson?Set&slotid=%d&%d@%c;"
        "time&1481650582406\" --header \"Content-Type:application/json\" >/dev/NULL 2>&1",
        filename, m_ip, m_slot, m_slot, varId, dataformat);
    LIVE_LINE(operation, "cmd[%s] \n", command.text);
    return run_and_report(operation, command, On_output::ERROR);
} catch (int number) {
    return report_exception("Commit", " ", "committing live data", number);
}

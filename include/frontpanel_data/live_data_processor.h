// Fetches the live-data document of one device variable from the web service of the card in a slot, and
// posts a new selection back. Transfers are shell commands (curl, gunzip, rm, echo) run by `system`, with
// temporary files under /tmp named by the variable, so calls block and two calls for one variable must not
// overlap. Nothing that a card or a caller hands in is ever executed.
#ifndef FRONTPANEL_DATA_LIVE_DATA_PROCESSOR_H
#define FRONTPANEL_DATA_LIVE_DATA_PROCESSOR_H

#include <cstdint>

#include <frontpanel_data/export.h>

class FRONTPANEL_DATA_EXPORT Live_Data_Processor {
public:
    // As `updateLDP`.
    Live_Data_Processor(int local, char* ip, int slot);
    virtual ~Live_Data_Processor();

    // Points the processor at the card in `slot`. `local` other than 0: the service of this unit, `ip` is
    // ignored. Otherwise `ip` is copied: a dotted IPv4 address with an optional ":port", at most 15
    // characters. It may be the processor's own. A null or longer text leaves no address, and every transfer
    // fails until the next call.
    void updateLDP(int local, char* ip, int slot);

    // Fetches the document of `varId`. `dataformat` is one letter or digit that the card understands.
    // `filepath` points to 256 bytes and receives the path of the document, which stays until the next fetch
    // of the variable. 0, the status that `system` returned for the command that failed, or -1 when a
    // command was not run (no valid address or data format).
    int getDataFromCard(int varId, char dataformat, char* filepath);

    // Fetches and parses. `webType` is a `LiveJSDataParser::JS_TYPE`, `panelType` is 0. On success 0: the
    // caller owns `*size` texts in `*buffer` (a skipped option is null) and releases each, and the array,
    // with delete[]; `*selectionIdx` is below `*size`. On failure the status as above or -1, `*buffer` is
    // null and `*size` 0. 0 is also returned for a tree without texts (with a null `*buffer`) and for an
    // unknown `webType` (with the results untouched). The three results must not be null.
    int getData(int varId, char dataformat, int webType, int panelType, char*** buffer,
                uint32_t* selectionIdx, uint32_t* size);

    // Writes the document that selects the UTF-8 text `buffer` to `filename`, a path of letters, digits and
    // "/._-+,:=@%" that starts with no dash. 0, a status of `system`, or -1 when a command was not run: an
    // argument is null or of another form, or the command would be longer than 255 bytes. An earlier file is
    // gone after a failure, unless its own name was refused. `convertType` is not used.
    int createLDCommitFile(int varId, char* filename, char* buffer, int convertType = 0);

    // Posts the document in `filename` (as above) to the card. 0, a status of `system`, or -1 when the
    // command was not run. Needs a writable /dev.
    int Commit(int varId, char dataformat, char* filename);

protected:
    char m_ip[16];
    int m_slot;
    bool m_local;
};

#endif

// Reads one live-data document, fetched from a slot card into a file, into a flat list of texts for a menu
// entry to show: the options of a combo box, or the lines of a tree. Not thread-safe.
#ifndef FRONTPANEL_DATA_LIVE_DATA_PARSER_H
#define FRONTPANEL_DATA_LIVE_DATA_PARSER_H

#include <vector>

#include <rapidjson/document.h>

#include <frontpanel_data/export.h>

// The error text of the last document that could not be read, cut to fit and zero-terminated. Empty until
// then, and never cleared. Two failures set it: `ParseJSON` cannot open the file, or cannot parse it (a document
// beyond the limits included); and a parse operation cannot read its document, which replaces that text by one
// that names the operation. Documents of the wrong shape, transfers and posts leave it as it was.
extern FRONTPANEL_DATA_EXPORT char message[150];

class FRONTPANEL_DATA_EXPORT LiveJSDataParser {
public:
    // What `parseEachSubTree` throws when an object has the wrong shape: the number of the source line that
    // found it. The other operations catch it and report the number.
    typedef int Shape_error;

    enum JS_TYPE { MIN_JS_TYPE = 0, COMBOBOX = 0, TREE = 1, MAX_JS_TYPE = 2 };

    struct actionbody {
        char rule[256];
        char message[256];
    };

    struct actionnode {
        char id[256];
        char type[256];
        actionbody action_body;
    };

    // One object of a tree document. Every text starts with as many asterisks as the node is deep and is
    // zero-terminated, cut to its field.
    struct treenode {
        char label[256];
        char type[256];
        char value[256];
        char render[256];
        int size;  // number of children
        // Owned, `size` nodes; an item is null only in a tree that failed to parse.
        treenode** children;
        actionnode action;
    };
    typedef treenode jsontree;

    struct displaylistStruct {
        int state;  // index of the selected text; -1 when the document names none
        int size;   // number of texts
        // `size` owned texts; both levels are made by new[]; a skipped option is null.
        char** dlist;
    };

    // `filename` is borrowed and must outlive the object; `jsonType` is a `JS_TYPE`; `panelType` must be 0.
    // A null file name, a type of 2 or more or another `panelType` is reported and leaves the object empty:
    // it parses nothing.
    LiveJSDataParser(char* filename, int jsonType, int panelType);
    ~LiveJSDataParser();
    LiveJSDataParser(const LiveJSDataParser&) = delete;
    LiveJSDataParser& operator=(const LiveJSDataParser&) = delete;

    // Reads a regular file of at most 64 MiB. It may hold 6 x 2^20 (6,291,456) of the characters that can begin
    // a value or a member: comma, colon, opening bracket and opening brace, those within texts included. The
    // caller owns the result, which needs the file no longer, and hands it to `FreeDocument`. Null when the file
    // cannot be opened, is not one JSON text or is beyond the limits; `message` then reports that it could not
    // be opened, or else that it could not be parsed. Waits for no FIFO: that reads as an empty file.
    rapidjson::Document* ParseJSON(const char* filename);

    // Each of the following writes at most 32 lines about single members of its document, and then one with
    // the number of those that it left out.

    // Reads the options of a combo-box document. The list belongs to the parser and is valid until the next
    // parse; to keep its texts, take `dlist` and leave null and a `size` of 0. `state` is not checked
    // against `size`. Null on failure. An option that is no object, or a state value that is no text, is an
    // error in the card's program and aborts.
    displaylistStruct* parseComboBox();

    // Reads a tree document into a list, in document order; `state` is 0. Ownership as for `parseComboBox`.
    // Null on failure, also for a tree of more than 255 levels or 65536 nodes. The root counts as neither: its
    // children are the first level.
    displaylistStruct* parseTreeAsList();

    // Reads a tree document into nodes alone. 0, or -1 on failure.
    int parseTree();

    // Reads one object and what is below it into `node`, which is initialised first, and appends a pointer
    // to each text of a node to `list`; the pointers live as long as the nodes. `depth` is 0 at the root; 255
    // is the deepest that may be read. Does nothing without a node, and only initialises it without a value.
    // Throws `Shape_error` when an object has the wrong shape or the tree exceeds a limit; what was read until
    // then can be released.
    void parseEachSubTree(const rapidjson::Value* value, jsontree* node, unsigned int depth,
                          std::vector<char*>& list);

    // Clears a node's texts, `size` and `children`; releases nothing.
    void initialiseJT(treenode* node);
    // Releases a node made by `new` and everything below it. Null is allowed, here and in the next two.
    void deleteJT(treenode* node);
    // Releases the result list with its texts.
    void delete_dList();
    // Releases a document and nulls the pointer to it.
    void FreeDocument(rapidjson::Document** document);

    // Print the result list, or a tree from `node` on, as diagnostic output.
    void printdList();
    void printJT(treenode* node, int depth);

    char* getFileName() { return filename; }
    int getJsonType() { return jsonType; }
    int getPanelType() { return panelType; }

protected:
    rapidjson::Document* jsondocument;
    char* filename;
    int jsonType;
    int panelType;
    jsontree* pjstree;
    displaylistStruct* dlistStruct;

private:
    class Reader;
};

#endif

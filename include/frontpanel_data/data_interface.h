// Parameter addressing and the interface to the device.
//
// Every value that the panel shows or edits is a device parameter, named by a parameter id (pid) and an
// index of up to two levels. The application derives `Data_interface` and passes it to each refresh and
// commit; the library never implements it. Not thread-safe: an interface that is called from several
// threads must serialise the calls.
#ifndef FRONTPANEL_DATA_DATA_INTERFACE_H
#define FRONTPANEL_DATA_DATA_INTERFACE_H

#include <cstdint>
#include <string>

#include <frontpanel_data/export.h>

// Longest text of a string parameter, in characters, without its terminator.
inline constexpr int MAX_STRING_LENGTH = 256;

// Selects the low byte of an integer.
inline constexpr int BYTE_MASK = 255;

// The bits of `debug`: the categories of diagnostic lines and the verbosity. A category holds the general bit
// and bits of its own, which some categories share.
enum Diagnostic_mask : uint32_t {
    DIAGNOSTIC_GENERAL = 0x1,     // selects every category
    DIAGNOSTIC_MODEL_READ = 0x3,  // values read from a model
    DIAGNOSTIC_COMMIT = 0x5,      // numbers, texts and slot selections written to the device
    DIAGNOSTIC_OPTIONS = 0x11,    // product options
    DIAGNOSTIC_BINDING = 0x21,    // bindings, their suggestions and dependants
    DIAGNOSTIC_WRITE = 0x25,      // values set in a model or tried against a binding
    DIAGNOSTIC_ENTRY_REFRESH = 0x35,
    DIAGNOSTIC_CONSTRUCTION = 0x101,
    DIAGNOSTIC_VISIBILITY = 0x401,
    DIAGNOSTIC_BINDING_VISIBILITY = 0x421,
    DIAGNOSTIC_REFRESH = 0x10001,   // texts, slot lists, and refreshes through the dispatcher
    DIAGNOSTIC_DISPATCH = 0x10431,  // each operation of the dispatcher
    DIAGNOSTIC_LINK_NAVIGATION = 0x80001,
    DIAGNOSTIC_SHORTCUT = 0x200001,
    DIAGNOSTIC_LINK_VISIBILITY = 0x400001,  // toggles included
    DIAGNOSTIC_LINK_CREATION = 0x480001,
    DIAGNOSTIC_LIVE_DATA = 0x1000001,

    DIAGNOSTIC_QUIET = 0x4000,   // verbosity, see `debug`
    DIAGNOSTIC_VERBOSE = 0x8000  // likewise
};

// Selects diagnostic output on standard output; 0 (the start value) is silent. A line prints when the word
// shares a bit with the line's category and the verbosity bits allow it: most lines are quiet while
// DIAGNOSTIC_QUIET is set and DIAGNOSTIC_VERBOSE is clear; the lines of entry refresh, set and visibility
// need one of the two. To select one category without the general lines, clear the general bit, as in
// `DIAGNOSTIC_SHORTCUT & ~DIAGNOSTIC_GENERAL`; categories that share another bit print too. Not locked.
extern FRONTPANEL_DATA_EXPORT uint32_t debug;

// Called with a line's mask before the line is printed, and with 0 after it, so that an application that keeps
// the diagnostic output can sort its lines. Not called for lines that print whatever `debug` holds. Null (the
// start value) for no listener. The library holds no mutex during the call, so the listener may call any entry;
// an operation that prints lines itself calls the listener again.
extern FRONTPANEL_DATA_EXPORT void (*debug_listener)(uint32_t mask);

// The index of a parameter: which of several equal parameters is meant (a channel, a card, ...).
struct Index_t {
    uint32_t m_index_num = 0;  // levels in use, 0 to 8
    uint16_t m_index[8] = {};  // level 0 first
};

// Equal when the same number of levels is in use and these levels are equal; unused levels do not count.
FRONTPANEL_DATA_EXPORT bool operator==(const Index_t& left, const Index_t& right);
FRONTPANEL_DATA_EXPORT bool operator!=(const Index_t& left, const Index_t& right);

enum RETURN_TYPE { INVALID_TYPE = 0, INTEGER = 1, STRING = 2 };

// The value of a parameter as bindings see it.
struct return_s {
    RETURN_TYPE rt = INVALID_TYPE;  // which of the two values is meant
    int32_t i = 0;
    std::string s;
};
typedef return_s return_t;

// Names one parameter instance.
struct var_index_s {
    RETURN_TYPE rt = INVALID_TYPE;
    uint32_t var = 0;  // parameter id
    Index_t index;
};
typedef var_index_s var_and_index_t;

// Strict weak ordering of parameter keys: parameter id, number of levels, level 0, level 1, value type.
// Levels 2 to 7 take no part, since the device supports two: keys that differ only there are the same key.
struct FRONTPANEL_DATA_EXPORT cmp_var_index_t {
    bool operator()(const var_index_s& left, const var_index_s& right) const;
};

// One parameter write that a binding engine asks an entry to perform.
struct GetSetS {
    uint32_t varid = 0;
    uint32_t varidx = 0;  // as `Data_model::Index_convert` makes it
    RETURN_TYPE rt = INVALID_TYPE;
    unsigned char buffer[128] = {};  // a 32-bit integer or the characters of a text
    uint32_t length = 0;             // meaningful bytes of `buffer`, at most 128
};

// Equal when the same bytes go to the same parameter.
FRONTPANEL_DATA_EXPORT bool operator==(const GetSetS& left, const GetSetS& right);

typedef uint16_t prod_id_t;  // 0: no product

// One row of the list of products that the device reports for its slots.
typedef struct tagPROD_LIST {
    prod_id_t prod_id;
    uint16_t prod_feature_support;  // feature bits
    char prod_family[16];           // zero-terminated
    char prod_string[16];           // zero-terminated
} PROD_LIST_S;

class FRONTPANEL_DATA_EXPORT Data_interface {
public:
    Data_interface();
    virtual ~Data_interface();

    // The application's own start-up; the library never calls it. The base does nothing.
    virtual void Init();
    // Reads a parameter into `buffer`, at most `length` bytes. 0 on success, anything else is a failure.
    virtual int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) = 0;
    // Writes `length` bytes (0 for an empty text) to a parameter. 0 on success, anything else is a failure.
    virtual int Set(unsigned int pid, unsigned int varidx, const void* buffer,
                    unsigned int length) = 0;
    // Fills a list of 16 records, record i for slot i. `remote` asks for the list of the selected socket
    // instead of the local one; `refresh` asks for a fresh list. 0 on success.
    virtual int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) = 0;
    virtual int Set_product_id(prod_id_t product) = 0;
    // Writes the zero-terminated alias of a product, at most 99 characters, to `name`. 0 on success.
    virtual int Get_prod_alias_name(char* name, prod_id_t product) = 0;

    // For the application; the library neither sets nor reads them. 0 at the start, so that a panel over an interface
    // that never sets them neither locks nor dims.
    int32_t go_home = 0;           // the panel is to return to its home screen
    int32_t lock_and_dim = 0;      // the panel is to lock and dim
    int32_t time_for_timeout = 0;  // the time-out setting of the panel

    // Declared for source compatibility and defined nowhere: use `VarIdDataInfStore::m_pDataAccessInf`.
    static Data_interface* m_pDataAccessInf;
};

// Holds the data interface for code without an interface argument. The application sets it and keeps the
// interface alive; null until then.
class FRONTPANEL_DATA_EXPORT VarIdDataInfStore {
public:
    static Data_interface* m_pDataAccessInf;
};

#endif

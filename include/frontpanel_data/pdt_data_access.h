// The device's parameter access: a data interface that can be pointed at one of several cards (sockets).
#ifndef FRONTPANEL_DATA_PDT_DATA_ACCESS_H
#define FRONTPANEL_DATA_PDT_DATA_ACCESS_H

#include <frontpanel_data/data_interface.h>
#include <frontpanel_data/export.h>

class FRONTPANEL_DATA_EXPORT Pdt_data_access : public Data_interface {
public:
    Pdt_data_access();
    ~Pdt_data_access() override;

    // Whether the current selection is the local unit. A caller that selects another socket for a while restores
    // the selection by passing this result to `setCurrentRouterSocket`.
    virtual int Is_current_selection_local() = 0;
    // Whether a local selection is in force.
    virtual bool Is_use_selection_local() = 0;
    // Selects the socket (card) that the following reads go to. 0 on success.
    virtual int setCurrentRouterSocket(int socket) = 0;
};

#endif

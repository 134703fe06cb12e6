#ifndef _OSGDISPLAYFILTERFOREGROUND_H_
#define _OSGDISPLAYFILTERFOREGROUND_H_

/// \file
/// Sends the finished picture of a viewport through filters.

#include <memory>
#include <string>
#include <vector>

#include "OSGDisplayFilterFields.h"
#include "OSGDisplayFilterForegroundBase.h"
#include "OSGHeldReferences.h"

OSG_BEGIN_NAMESPACE

class DisplayFilterGroup;

/// Filters work in read-back groups: each group grabs what the viewport shows by then and draws it again with
/// its material, group by group in the order in which filters first asked for them. Filters that ask for one
/// name share a group, and with it one picture and one material, which has room for one program: the first
/// that adds one has it.
///
/// Belongs to the thread that draws the viewport, with the window's context current; for one viewport.
class OSG_SYSTEMLIB_DLLMAPPING DisplayFilterForeground : public DisplayFilterForegroundBase
{
  public:
    typedef DisplayFilterForegroundBase Inherited;

    /// The group of that name, which is made where there is none. Never null; valid until the filters change.
    DisplayFilterGroup *findReadbackGroup(const std::string &name);
    /// All groups, in the order of drawing.
    std::vector<DisplayFilterGroup *> getGroups() const;

    /// Sets the filters up where they, or which of them are enabled, have changed; then draws the groups.
    /// Null filters are passed over with one warning.
    void draw(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    DisplayFilterForeground();
    DisplayFilterForeground(const DisplayFilterForeground &source);
    ~DisplayFilterForeground() override;

    void onCreate(const DisplayFilterForeground *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class DisplayFilterForegroundBase;

    static void initMethod();

    std::vector<DisplayFilterPtr> enabledFilters() const;

    bool _outdated = true;
    std::vector<DisplayFilterPtr> _setUp; ///< the filters that the groups were made for
    std::vector<std::unique_ptr<DisplayFilterGroup>> _groups;
    HeldReferences<DisplayFilterPtr> _heldFilters;
};

OSG_END_NAMESPACE

#endif

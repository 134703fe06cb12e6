#include "OSGPointerText.h"

#include <cinttypes>
#include <cstdio>

#include "OSGFieldContainer.h"

OSG_BEGIN_NAMESPACE

namespace
{

std::ostream &writeAddress(std::ostream &stream, const void *address)
{
    char text[2 + 2 * sizeof(std::uintptr_t) + 1];
    std::snprintf(text, sizeof(text), "0x%" PRIxPTR, reinterpret_cast<std::uintptr_t>(address));
    return stream << text;
}

} // namespace

std::ostream &operator<<(std::ostream &stream, const FieldContainerPtr &container)
{
    stream << "FCPtr ";
    if(container == NullFC)
        return writeAddress(stream, nullptr) << ":NullFC";
    // The pointer itself is the same for all aspects.
    writeAddress(stream, container.getAspectCPtr(0)) << " " << container->getTypeName() << "Ptr(";
    return writeAddress(stream, container.getCPtr()) << ")";
}

OSG_END_NAMESPACE

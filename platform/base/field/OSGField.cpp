#include "OSGField.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

FieldType::FieldType(const Char8 *name, const Char8 *parentName, const DataType &contentType,
                     CreateFieldMethod create, Cardinality cardinality)
    : TypeBase(name, parentName, 1), _contentType(contentType), _cardinality(cardinality), _create(create)
{
}

StringConversionStateBase::~StringConversionStateBase() = default;

Field::~Field() = default;

void logNoConversionFromString()
{
    SLOG << "Error From String Conversion not available for " << std::endl;
}

void logNoConversionToString()
{
    SLOG << "Error To String Conversion not available for " << std::endl;
}

FieldFactory &FieldFactory::the()
{
    static FieldFactory factory;
    return factory;
}

FieldType *FieldFactory::getFieldType(const Char8 *name) const
{
    return dynamic_cast<FieldType *>(TypeFactory::the()->findType(name));
}

Field *FieldFactory::createField(const Char8 *name) const
{
    const FieldType *type = getFieldType(name);
    return type == nullptr ? nullptr : type->createField();
}

OSG_END_NAMESPACE

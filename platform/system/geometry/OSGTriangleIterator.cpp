#include "OSGTriangleIterator.h"

#include "OSGGL.h"
#include "OSGGeometryArrays.h"

OSG_BEGIN_NAMESPACE

TriangleIterator::TriangleIterator(const GeometryPtr &geometry) : _primitive(geometry)
{
    setToBegin();
}

TriangleIterator::TriangleIterator(const NodePtr &node) : _primitive(node)
{
    setToBegin();
}

void TriangleIterator::setToBegin()
{
    _primitive.setToBegin();
    _index = 0;
    _inPrimitive = 0;
    settle();
}

void TriangleIterator::setToEnd()
{
    _primitive.setToEnd();
}

void TriangleIterator::seek(Int32 index)
{
    setToBegin();
    while(_index < index && !isAtEnd())
        ++*this;
}

void TriangleIterator::operator++()
{
    if(isAtEnd())
        return;
    ++_index;
    ++_inPrimitive;
    settle();
}

UInt32 TriangleIterator::countInPrimitive() const
{
    PrimitiveCounts counts;
    countPrimitive(_primitive.getType(), _primitive.getLength(), counts);
    return counts.triangles;
}

bool TriangleIterator::isWhole() const
{
    return getPositionIndex(0) >= 0 && getPositionIndex(1) >= 0 && getPositionIndex(2) >= 0;
}

void TriangleIterator::settle()
{
    for(; !_primitive.isAtEnd(); ++_primitive, _inPrimitive = 0)
    {
        const UInt32 count = countInPrimitive();
        for(; _inPrimitive < count; ++_inPrimitive, ++_index)
        {
            const Int32 i = Int32(_inPrimitive);
            switch(_primitive.getType())
            {
            case GL_TRIANGLES:
                _corners[0] = 3 * i;
                _corners[1] = 3 * i + 1;
                _corners[2] = 3 * i + 2;
                break;
            case GL_QUADS:
                _corners[0] = i / 2 * 4;
                _corners[1] = _corners[0] + 1 + i % 2;
                _corners[2] = _corners[0] + 2 + i % 2;
                break;
            case GL_TRIANGLE_FAN:
            case GL_POLYGON:
                _corners[0] = 0;
                _corners[1] = i + 1;
                _corners[2] = i + 2;
                break;
            default:
                // In strips, of triangles or quads, every other triangle is turned round.
                _corners[0] = i + i % 2;
                _corners[1] = i + 1 - i % 2;
                _corners[2] = i + 2;
                break;
            }
            if(isWhole())
                return;
        }
    }
}

OSG_END_NAMESPACE

"""The peer of bench_frame: draws the same volume with VTK, by the same commands. Its OpenGL needs a display.

    vtk_frame.py VOLUME full|shell dvr|lit gpu|cpu

VOLUME holds the voxels as "bench_frame write" leaves them, and VOLUME.table the table.
"""

import math
import sys
import time

import vtk

SIDE = 256
PICTURE = 512
EYE_DISTANCE = 850.0
EYE_HEIGHT = 0.35
STEP = 0.004


def read_table(name):
    """256 times red, green, blue, opacity, 0 to 255."""
    with open(name, encoding="ascii") as file:
        return [[int(word) for word in line.split()] for line in file]


def volume_of(file, table, lit, mapper):
    reader = vtk.vtkImageReader()
    reader.SetFileName(file)
    reader.SetFileDimensionality(3)
    reader.FileLowerLeftOn()
    reader.SetDataScalarTypeToUnsignedChar()
    reader.SetDataExtent(0, SIDE - 1, 0, SIDE - 1, 0, SIDE - 1)
    reader.SetDataSpacing(1, 1, 1)
    reader.SetDataOrigin(-(SIDE - 1) / 2, -(SIDE - 1) / 2, -(SIDE - 1) / 2)
    reader.Update()
    mapper.SetInputConnection(reader.GetOutputPort())

    colour, opacity = vtk.vtkColorTransferFunction(), vtk.vtkPiecewiseFunction()
    for value, entry in enumerate(table):
        colour.AddRGBPoint(value, entry[0] / 255, entry[1] / 255, entry[2] / 255)
        opacity.AddPoint(value, entry[3] / 255)

    look = vtk.vtkVolumeProperty()
    look.SetColor(colour)
    look.SetScalarOpacity(opacity)
    # The table's opacities are those of a 200th of the volume's side.
    look.SetScalarOpacityUnitDistance(SIDE / 200)
    look.SetInterpolationTypeToLinear()
    if lit:
        look.ShadeOn()
        look.SetAmbient(0.2)
        look.SetDiffuse(0.7)
        look.SetSpecular(0.2)
        look.SetSpecularPower(12.8)
    volume = vtk.vtkVolume()
    volume.SetMapper(mapper)
    volume.SetProperty(look)
    return volume


def mapper_of(kind):
    if kind == "gpu":
        mapper = vtk.vtkOpenGLGPUVolumeRayCastMapper()
        mapper.SetUseJittering(0)
        mapper.SetMaxMemoryInBytes(4 << 30)
        mapper.SetMaxMemoryFraction(1.0)
    else:
        mapper = vtk.vtkFixedPointVolumeRayCastMapper()
        mapper.SetInteractiveSampleDistance(STEP * SIDE)
        mapper.SetImageSampleDistance(1.0)
    mapper.SetLockSampleDistanceToInputSpacing(0)
    mapper.SetAutoAdjustSampleDistances(0)
    mapper.SetSampleDistance(STEP * SIDE)
    return mapper


def main():
    file, _, way, kind = sys.argv[1:]
    mapper = mapper_of(kind)
    renderer = vtk.vtkRenderer()
    renderer.SetBackground(0, 0, 0)
    renderer.AddVolume(volume_of(file, read_table(file + ".table"), way == "lit", mapper))
    window = vtk.vtkRenderWindow()
    window.SetOffScreenRendering(1)
    window.SetMultiSamples(0)
    window.SetSize(PICTURE, PICTURE)
    window.AddRenderer(renderer)
    pixels = vtk.vtkUnsignedCharArray()
    camera = renderer.GetActiveCamera()
    camera.SetViewAngle(30)

    def draw(angle):
        """From the camera's move to the pixels in memory; seconds on the clock and of the processors."""
        begin, processors = time.perf_counter(), time.process_time()
        across = math.sqrt(1 - EYE_HEIGHT * EYE_HEIGHT)
        camera.SetPosition(EYE_DISTANCE * across * math.sin(angle), EYE_DISTANCE * EYE_HEIGHT,
                           EYE_DISTANCE * across * math.cos(angle))
        camera.SetFocalPoint(0, 0, 0)
        camera.SetViewUp(0, 1, 0)
        renderer.SetActiveCamera(camera)
        camera.SetClippingRange(EYE_DISTANCE - 230, EYE_DISTANCE + 230)
        window.Render()
        window.GetPixelData(0, 0, PICTURE - 1, PICTURE - 1, 0, pixels, 0)
        return time.perf_counter() - begin, time.process_time() - processors

    for _ in range(3):
        draw(0.0)
    if pixels.GetNumberOfTuples() != PICTURE * PICTURE:
        sys.exit("no pixels")
    said = window.ReportCapabilities()
    name = [line.split(":", 1)[1].strip() for line in said.splitlines() if "renderer string" in line]
    print("ready", mapper.GetSampleDistance(), *name, flush=True)
    for line in sys.stdin:
        words = line.split()
        if words[0] == "frame":
            print(*draw(float(words[1])), flush=True)
        elif words[0] == "picture":
            with open(words[1], "wb") as target:
                target.write(bytes(memoryview(pixels)))
            print("written", flush=True)
        else:
            print("unknown command", flush=True)


main()

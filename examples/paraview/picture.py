"""pvpython picture.py PLUGIN.so MODEL.json GRID.csv PICTURE.png: an output over two inputs as a surface.

PLUGIN.so is what plugin/ builds.

    surrogate export CASES.csv -x A,B -y Y -m kriging --format json -o model.json
    surrogate evaluate model.json --count A=40 --count B=40 -o grid.csv
"""
import math
import sys

from paraview.simple import (Calculator, ColorBy, CSVReader, GetActiveViewOrCreate, LoadPlugin, ResetCamera,
                             SaveScreenshot, servermanager, Show, TableToStructuredGrid)

plugin, model, grid, picture = sys.argv[1:]
LoadPlugin(plugin, remote=False, ns=globals())
predicted = SurrogatePrediction(Input=CSVReader(FileName=[grid]), Model=model)  # noqa: F821
table = servermanager.Fetch(predicted)
columns = [table.GetColumn(i) for i in range(table.GetNumberOfColumns())]
names = [column.GetName() for column in columns]
sizes = [column.GetRange()[1] - column.GetRange()[0] for column in columns]
side = math.isqrt(table.GetNumberOfRows())
surface = TableToStructuredGrid(Input=predicted, WholeExtent=[0, side - 1, 0, side - 1, 0, 0],
                                XColumn=names[0], YColumn=names[1], ZColumn=names[-1])
coloured = Calculator(Input=surface, Function="coordsZ", ResultArrayName=names[-1])
view = GetActiveViewOrCreate("RenderView")
view.UseColorPaletteForBackground = 0
view.Background = [1.0, 1.0, 1.0]
view.CameraPosition, view.CameraFocalPoint, view.CameraViewUp = [-2, -3, 2], [0, 0, 0], [0, 0, 1]
shown = Show(coloured, view)
shown.Scale = [1.0 / sizes[0], 1.0 / sizes[1], 0.5 / sizes[-1]]
ColorBy(shown, ("POINTS", names[-1]))
shown.RescaleTransferFunctionToDataRange()
ResetCamera()
SaveScreenshot(picture, view, ImageResolution=[640, 480])

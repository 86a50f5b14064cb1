"""pvpython picture.py MODEL.json GRID.csv PICTURE.png: an output over two inputs as a surface.

    surrogate export CASES.csv -x A,B -y Y -m kriging --format json -o model.json
    surrogate evaluate model.json --count A=40 --count B=40 -o grid.csv
"""
import math
import os
import sys

from paraview.simple import (Calculator, ColorBy, CSVReader, GetActiveViewOrCreate, ProgrammableFilter, ResetCamera,
                             SaveScreenshot, servermanager, Show, TableToStructuredGrid)

with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "prediction.py"), encoding="utf-8") as file:
    script = f"MODEL = {os.path.abspath(sys.argv[1])!r}\n" + file.read()
predicted = ProgrammableFilter(Input=CSVReader(FileName=[sys.argv[2]]), Script=script, CopyArrays=1)
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
SaveScreenshot(sys.argv[3], view, ImageResolution=[640, 480])

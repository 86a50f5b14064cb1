"""The script of a Programmable Filter of ParaView on a table: adds the outputs of an exported model.

MODEL is what `surrogate export --format json` wrote. ParaView's Python must find the package surrogatemodel."""
import pandas
import surrogatemodel

model = surrogatemodel.load(MODEL)
points = pandas.DataFrame({name: inputs[0].RowData[name] for name in model.feature_names_in_})
for name, values in model.table(points).drop(columns=points.columns).items():
    output.RowData.append(values.to_numpy(), name)

"""dask_test.py EXAMPLE: two workers over ten partitions give the bytes that one process gives."""
import importlib.util
import os
import pickle
import subprocess
import sys
import tempfile

import numpy as np
import pandas as pd

if importlib.util.find_spec("distributed") is None:
    print("Not tested: Dask (python3-distributed) is not installed.")
    sys.exit(77)

from surrogatemodel import Kriging

random = np.random.default_rng(1)
NAMES = ["a", "b", "c"]
cases = pd.DataFrame(random.uniform(size=(80, 3)), columns=NAMES)
model = Kriging().fit(cases, pd.Series(np.sin(5 * cases["a"]) + cases["b"] * cases["c"], name="y"))

with tempfile.TemporaryDirectory() as folder:
    with open(os.path.join(folder, "model.pickle"), "wb") as file:
        pickle.dump(model, file)
    assert os.path.getsize(file.name) < 50_000
    paths = [os.path.join(folder, f"points{i}.csv") for i in range(10)]
    for path in paths:
        pd.DataFrame(random.uniform(size=(300, 3)), columns=NAMES).to_csv(path, index=False)
    subprocess.run([sys.executable, sys.argv[1], file.name, *paths], check=True, cwd=folder,
                   stdout=subprocess.DEVNULL)
    for path in paths:
        with open(path.replace(".csv", ".predicted.csv"), encoding="utf-8") as file:
            assert file.read() == model.table(pd.read_csv(path), interval=0.95).to_csv(index=False)

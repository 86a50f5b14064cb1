"""predict.py MODEL.pickle FILE.csv...: predictions with limits, FILE.predicted.csv beside each file.

Partitions go by file name: workers read and write them, and only the model travels. For a cluster
give Client the address of its scheduler instead of a LocalCluster; all must see the same files."""
import pickle
import sys

import pandas
import surrogatemodel
from dask.distributed import Client, LocalCluster


def predict(model, path):
    surrogatemodel.set_thread_count(1)  # one per worker: partitions are what runs side by side
    points = pandas.read_csv(path)
    result = path.removesuffix(".csv") + ".predicted.csv"
    model.table(points, interval=0.95).to_csv(result, index=False)
    return result


if __name__ == "__main__":
    with open(sys.argv[1], "rb") as file:
        model = pickle.load(file)
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, \
            Client(cluster) as client:
        everywhere = client.scatter(model, broadcast=True)
        for result in client.gather(client.map(predict, [everywhere] * len(sys.argv[2:]), sys.argv[2:])):
            print(result)

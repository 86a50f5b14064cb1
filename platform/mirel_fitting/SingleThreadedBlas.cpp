#include <mirel_fitting/SingleThreadedBlas.h>

#include <cblas.h>

SingleThreadedBlas::SingleThreadedBlas() : before(openblas_get_num_threads())
{
    openblas_set_num_threads(1);
}

SingleThreadedBlas::~SingleThreadedBlas()
{
    openblas_set_num_threads(before);
}

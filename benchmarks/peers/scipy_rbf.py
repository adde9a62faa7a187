"""SciPy's RBFInterpolator: the linear kernel under a polynomial of degree 1.

SciPy has no spherical kernel. The work is the same: one dense system of all samples and the drift, then a kernel for
every pair of sample and target. The estimates are another model's; no variances.
"""

from stopwatch import Stopwatch, parse_arguments, read_tables, write_estimates
from scipy.interpolate import RBFInterpolator

arguments = parse_arguments()
if arguments.variance:
    raise SystemExit("RBFInterpolator knows no variances")
watch = Stopwatch()
points, observations, targets = read_tables(arguments)
watch.done("read")
interpolator = RBFInterpolator(points, observations, kernel="linear", degree=1)
watch.done("build")
estimates = interpolator(targets)
watch.done("estimate")
write_estimates(arguments.estimates, {"z": estimates})
watch.done("write")
watch.print()

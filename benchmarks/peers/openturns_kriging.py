"""OpenTURNS' KrigingAlgorithm: krige's own model with drift 1 and the default range, nothing fitted.

Variances are those for a sill of 1, as krige gives them: the amplitude of the covariance is 1.
"""

import math

import openturns
from stopwatch import Stopwatch, parse_arguments, read_tables, write_estimates

openturns.TBB.Disable()
openturns.Log.Show(openturns.Log.NONE)
arguments = parse_arguments()
watch = Stopwatch()
points, observations, targets = read_tables(arguments)
samples = openturns.Sample(points)
values = openturns.Sample(observations.reshape(-1, 1))
asked = openturns.Sample(targets)
watch.done("read")

dimension = points.shape[1]
# Range: the diagonal of the normalised box, whose edges are 2 long.
covariance = openturns.SphericalModel([1.0] * dimension, [1.0], 2 * math.sqrt(dimension))
covariance.setNuggetFactor(0.0)
drift = openturns.LinearBasisFactory(dimension).build()
algorithm = openturns.KrigingAlgorithm(samples, values, covariance, drift)
algorithm.setOptimizeParameters(False)
algorithm.run()
result = algorithm.getResult()
watch.done("build")

columns = {"z": result.getConditionalMean(asked)}
if arguments.variance:
    columns["variance"] = result.getConditionalMarginalVariance(asked)
watch.done("estimate")
write_estimates(arguments.estimates, columns)
watch.done("write")
watch.print()

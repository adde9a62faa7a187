# Universal Kriging by gstat on the two example data sets: writes the samples, targets and expected figures beside this
# script. Needs the R packages gstat and sp (Debian: r-cran-gstat); run from anywhere:
#
#     Rscript tests/data/gstat/make_reference.R
#
# README.md says what the files hold and why they can be compared with our own model to nearly all digits.

suppressPackageStartupMessages({
  library(sp)
  library(gstat)
})

script <- sub("^--file=", "", grep("^--file=", commandArgs(), value = TRUE)[1])
folder <- dirname(script)
examples <- file.path(folder, "..", "..", "..", "examples")

# Named in full, so that a later default generator cannot move samples or targets.
set.seed(2004, kind = "Mersenne-Twister", normal.kind = "Inversion", sample.kind = "Rejection")

# All monomials of total degree 1 to order in the columns of u, one column each.
monomials <- function(u, order) {
  if (order == 0) return(matrix(0, nrow(u), 0))
  exponents <- as.matrix(expand.grid(rep(list(0:order), ncol(u))))
  exponents <- exponents[rowSums(exponents) %in% seq_len(order), , drop = FALSE]
  columns <- apply(exponents, 1, function(e) apply(t(t(u)^e), 1, prod))
  matrix(columns, nrow = nrow(u), dimnames = list(NULL, paste0("t", seq_len(nrow(exponents)))))
}

distancesTo <- function(points, target) sqrt(colSums((t(points) - target)^2))

nearestOf <- function(points, target, nearest) {
  used <- order(distancesTo(points, target))
  if (nearest > 0) used[seq_len(nearest)] else used
}

# The condition of the drift's columns over a target's neighbourhood as our model forms them: monomials in coordinates
# centred on the sample box, the geometric mean of its shortest and longest side being 2.
driftCondition <- function(points, target, nearest, order) {
  low <- apply(points, 2, min)
  high <- apply(points, 2, max)
  scale <- 2 / sqrt(min(high - low) * max(high - low))
  used <- points[nearestOf(points, target, nearest), , drop = FALSE]
  kappa(cbind(1, monomials(t((t(used) - (low + high) / 2) * scale), order)), exact = TRUE)
}

# A target is fit for comparison when it is clear of every sample, when no other sample ties with its last neighbour,
# and when its neighbours determine the drift: where they do not (events along a plane), double precision itself loses
# more digits than the comparison allows, and what would be compared is rounding.
isFit <- function(points, target, settings, clearance, worstCondition) {
  sorted <- sort(distancesTo(points, target))
  nearest <- settings$nearest[settings$nearest > 0]
  conditions <- mapply(function(n, order) driftCondition(points, target, n, order),
                       settings$nearest, settings$highestDrift)
  sorted[1] > clearance && all(sorted[nearest + 1] / sorted[nearest] > 1 + 1e-6) && all(conditions < worstCondition)
}

# gstat forms normal equations, which square the condition of the drift's columns: monomials about the target, in units
# of the neighbourhood's radius, are made orthonormal over the points in use. They span the same polynomials.
krigeOne <- function(points, outputs, target, model, order, nearest) {
  used <- nearestOf(points, target, nearest)
  radius <- max(distancesTo(points[used, , drop = FALSE], target))

  data <- as.data.frame(points)
  newdata <- as.data.frame(t(target))
  coordinateNames <- colnames(points)
  trend <- "1"
  if (order > 0) {
    terms <- monomials(t((t(points) - target) / radius), order)
    atTarget <- monomials(matrix(0, 1, length(target)), order)
    columns <- colnames(terms)
    centre <- colMeans(terms[used, , drop = FALSE])
    triangle <- qr.R(qr(t(t(terms[used, , drop = FALSE]) - centre), LAPACK = FALSE, tol = 0))
    terms <- t(t(terms) - centre) %*% backsolve(triangle, diag(ncol(terms)))
    atTarget <- (atTarget - centre) %*% backsolve(triangle, diag(ncol(terms)))
    colnames(terms) <- colnames(atTarget) <- columns
    data <- cbind(data, terms)
    newdata <- cbind(newdata, atTarget)
    trend <- paste(columns, collapse = " + ")
  }
  locations <- as.formula(paste("~", paste(coordinateNames, collapse = " + ")))
  coordinates(newdata) <- locations

  estimates <- c()
  for (name in colnames(outputs)) {
    data$z <- outputs[[name]]
    samples <- data
    coordinates(samples) <- locations
    result <- krige(as.formula(paste("z ~", trend)), samples, newdata, model,
                    nmax = if (nearest > 0) nearest else Inf, debug.level = 0)
    estimates[name] <- result$var1.pred
    variance <- result$var1.var
  }
  c(estimates, variance = variance)
}

# Fifteen digits read back to the same double for coordinates and outputs given in a few decimals.
writePoints <- function(table, name) {
  text <- lapply(table, function(v) sprintf("%.15g", v))
  stopifnot(identical(lapply(text, as.double), lapply(table, as.double)))
  write.csv(as.data.frame(text), file.path(folder, name), quote = FALSE, row.names = FALSE)
}

# settings has a row per system: range (a fraction of the sample box's diagonal), nugget, nearest (0: all samples) and
# the highest drift order to go up to.
writeReference <- function(name, points, outputs, candidates, numTargets, settings, clearance, worstCondition) {
  fit <- apply(candidates, 1, function(target) isFit(points, target, settings, clearance, worstCondition))
  cat(name, ":", sum(fit), "of", nrow(candidates), "candidates are fit as targets\n")
  targets <- candidates[sort(sample(which(fit), numTargets)), ]
  diagonal <- sqrt(sum((apply(points, 2, max) - apply(points, 2, min))^2))

  rows <- list()
  for (s in seq_len(nrow(settings))) {
    with(settings[s, ], {
      model <- vgm(1 - nugget, "Sph", range * diagonal, nugget = nugget)
      for (order in 0:highestDrift) for (t in seq_len(nrow(targets))) {
        figures <- krigeOne(points, outputs, targets[t, ], model, order, nearest)
        stopifnot(is.finite(figures))
        rows[[length(rows) + 1]] <<- data.frame(range, nugget, nearest, drift = order, target = t - 1, t(figures))
      }
    })
  }
  expected <- do.call(rbind, rows)
  figures <- c(colnames(outputs), "variance")
  expected[figures] <- lapply(expected[figures], function(v) sprintf("%.17g", v))

  writePoints(data.frame(points, outputs), paste0(name, "_samples.csv"))
  writePoints(data.frame(targets), paste0(name, "_targets.csv"))
  write.csv(expected, file.path(folder, paste0(name, "_expected.csv")), quote = FALSE, row.names = FALSE)
}

setting <- function(range, nugget, nearest, highestDrift) data.frame(range, nugget, nearest, highestDrift)

# Metres in both directions. Targets lie off the 10 m grid, where no two samples are equally far.
volcanoSamples <- read.csv(file.path(examples, "volcano", "samples.csv"))
writeReference("volcano", as.matrix(volcanoSamples[, c("x", "y")]), volcanoSamples["elevation"],
               candidates = cbind(x = round(runif(200, 0, 860), 3), y = round(runif(200, 0, 600), 3)), numTargets = 40,
               settings = rbind(setting(0.5, 0.125, 0, 3), setting(0.5, 0.125, 12, 1), setting(0.5, 0.125, 32, 3),
                                setting(1.25, 0, 0, 3), setting(1.25, 0, 48, 3)),
               clearance = 1, worstCondition = 5000)

# Degrees and kilometres become kilometres east and north of 180 E, 20 S, to the metre; depth is stretched four times,
# so that the three ranges are alike. Targets are held-out events.
commonScale <- function(events) {
  degree <- 111.195
  as.matrix(data.frame(east = round((events$long - 180) * degree * cos(20 * pi / 180), 3),
                       north = round((events$lat + 20) * degree, 3),
                       depth = 4 * events$depth))
}
quakesSamples <- read.csv(file.path(examples, "quakes", "samples.csv"))
quakesSamples <- quakesSamples[sort(sample(nrow(quakesSamples), 250)), ]
writeReference("quakes", commonScale(quakesSamples), quakesSamples[, c("mag", "stations")],
               candidates = commonScale(read.csv(file.path(examples, "quakes", "truth.csv"))), numTargets = 40,
               settings = rbind(setting(0.5, 0.25, 0, 3), setting(0.5, 0.25, 16, 0), setting(0.5, 0.25, 80, 3),
                                setting(1, 0.0625, 0, 3), setting(1, 0.0625, 120, 3)),
               clearance = 10, worstCondition = 5000)

cat(R.version.string, "gstat", format(packageVersion("gstat")), "sp", format(packageVersion("sp")), "\n")

# gstat's krige: the spherical model over the nearest samples, with a linear drift; estimates and variances.
#
#     Rscript --vanilla gstat_krige.R SAMPLES TARGETS ESTIMATES NEAREST
#
# SAMPLES and TARGETS are CSV files with a header row; the last column of SAMPLES, z, is the observation. NEAREST 0: all
# samples. Prints one line of JSON: seconds of each phase, without R's start and loading of packages.

suppressPackageStartupMessages({
    library(sp)
    library(gstat)
})
arguments <- commandArgs(trailingOnly = TRUE)

phases <- character()
begin <- proc.time()
done <- function(phase) {
    now <- proc.time()
    spent <- now - begin
    phases <<- c(phases, sprintf('"%s": {"cpu": %.6f, "wall": %.6f}', phase, spent[["user.self"]] + spent[["sys.self"]],
                                 spent[["elapsed"]]))
    begin <<- now
}

# scan is the fastest reader of base R: read.csv takes four times as long.
read_numbers <- function(path) {
    names <- strsplit(readLines(path, 1), ",")[[1]]
    columns <- scan(path, what = rep(list(0), length(names)), sep = ",", skip = 1, quiet = TRUE)
    names(columns) <- names
    as.data.frame(columns)
}

samples <- read_numbers(arguments[1])
targets <- read_numbers(arguments[2])
inputs <- names(targets)
# Normalised as krige does it by default: each input's range to [-1, 1].
for (name in inputs) {
    low <- min(samples[[name]])
    high <- max(samples[[name]])
    samples[[name]] <- (samples[[name]] - (low + high) / 2) / ((high - low) / 2)
    targets[[name]] <- (targets[[name]] - (low + high) / 2) / ((high - low) / 2)
}
done("read")

locations <- as.formula(paste("~", paste(inputs, collapse = "+")))
coordinates(samples) <- locations
coordinates(targets) <- locations
# Range: the diagonal of the normalised box, whose edges are 2 long.
model <- vgm(1, "Sph", 2 * sqrt(length(inputs)), 0)
done("build")

nearest <- as.numeric(arguments[4])
estimates <- krige(as.formula(paste("z ~", paste(inputs, collapse = "+"))), samples, targets, model,
                   nmax = if (nearest > 0) nearest else Inf, debug.level = 0)
done("estimate")

writeLines(c("z,variance", sprintf("%.17g,%.17g", estimates$var1.pred, estimates$var1.var)), arguments[3])
done("write")
cat("{", paste(phases, collapse = ", "), "}\n", sep = "")

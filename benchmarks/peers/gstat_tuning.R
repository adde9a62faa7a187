# What krige tune finds beside gstat's fitted spherical variogram, on data of the R packages gstat, sp, MASS and datasets.
#
#     Rscript --vanilla gstat_tuning.R KRIGE [PATTERN]
#
# PATTERN: of the sets' names, for some of them.
#
# Each set is divided into five parts; each part is estimated from the others, by `krige tune` and `krige predict` with
# their defaults and by gstat's ordinary Kriging with fit.variogram of its own bins and its own first values. Repeated
# places count once. With three inputs gstat's are scaled to [-1, 1]. Prints the rows of docs/tuning.md: root mean
# squared errors, and how many in 100 values the intervals of 95 % hold.

suppressPackageStartupMessages({
    library(sp)
    library(gstat)
    library(MASS)
})
arguments <- commandArgs(trailingOnly = TRUE)
krige <- normalizePath(arguments[1])
pattern <- if (length(arguments) > 1) arguments[2] else ""
folder <- tempfile("tuning")
dir.create(folder)
numFolds <- 5

withGstat <- function(samples, targets, inputs) {
    if (length(inputs) > 2) {
        for (name in inputs) {
            ends <- range(samples[[name]])
            targets[[name]] <- (targets[[name]] - mean(ends)) / (diff(ends) / 2)
            samples[[name]] <- (samples[[name]] - mean(ends)) / (diff(ends) / 2)
        }
    }
    locations <- as.formula(paste("~", paste(inputs, collapse = "+")))
    coordinates(samples) <- locations
    coordinates(targets) <- locations
    model <- suppressWarnings(fit.variogram(variogram(z ~ 1, samples), vgm("Sph")))
    estimates <- gstat::krige(z ~ 1, samples, targets, model, debug.level = 0)
    data.frame(value = estimates$var1.pred, error = sqrt(pmax(estimates$var1.var, 0)))
}

withKrige <- function(samples, targets, inputs) {
    path <- function(name) file.path(folder, name)
    write.csv(samples, path("samples.csv"), row.names = FALSE, quote = FALSE)
    write.csv(targets[inputs], path("targets.csv"), row.names = FALSE, quote = FALSE)
    columns <- c("--inputs", paste(inputs, collapse = ","), "--outputs", "z")
    run <- function(...) {
        status <- system2(krige, c(..., columns, "--quiet"), stdout = FALSE)
        if (status != 0) stop("krige failed")
    }
    run("tune", path("samples.csv"), "-o", path("best.toml"))
    run("predict", path("samples.csv"), "--config", path("best.toml"), "--at", path("targets.csv"), "--variance",
        "-o", path("estimates.csv"))
    estimates <- read.csv(path("estimates.csv"))
    data.frame(value = estimates$z, error = estimates$z_stderr)
}

# The ratio of the errors; nothing for a set that is not asked for.
compare <- function(name, data, inputs, output) {
    if (!grepl(pattern, name)) return(NULL)
    data <- data[, c(inputs, output)]
    names(data) <- c(inputs, "z")
    data <- data[complete.cases(data) & !duplicated(data[, inputs]), ]
    set.seed(7)
    fold <- sample(rep(seq_len(numFolds), length.out = nrow(data)))
    found <- list(gstat = withGstat, krige = withKrige)
    figures <- sapply(found, function(method) {
        squared <- numeric()
        covered <- logical()
        for (f in seq_len(numFolds)) {
            targets <- data[fold == f, ]
            estimates <- method(data[fold != f, ], targets, inputs)
            squared <- c(squared, (estimates$value - targets$z)^2)
            covered <- c(covered, abs(estimates$value - targets$z) <= qnorm(0.975) * estimates$error)
        }
        c(sqrt(mean(squared)), 100 * mean(covered))
    })
    cat(sprintf("| %s | %d | %.4g | %.4g | %.3f | %.1f | %.1f |\n", name, nrow(data), figures[1, 1], figures[1, 2],
                figures[1, 2] / figures[1, 1], figures[2, 1], figures[2, 2]))
    figures[1, 2] / figures[1, 1]
}

sets <- new.env()
data(list = c("meuse", "jura", "coalash", "sic97", "sic2004", "walker", "fulmar", "pcb", "oxford"), envir = sets)
cat("| set | samples | gstat | krige tune | ratio | gstat in 95 % | krige in 95 % |\n|---|---|---|---|---|---|---|\n")
ratios <- numeric()
add <- function(...) ratios <<- c(ratios, compare(...))

for (metal in c("cadmium", "copper", "lead", "zinc")) {
    sets$meuse[[metal]] <- log(sets$meuse[[metal]])
    add(paste("meuse, log", metal), sets$meuse, c("x", "y"), metal)
}
add("meuse, organic matter", sets$meuse, c("x", "y"), "om")
add("meuse, elevation", sets$meuse, c("x", "y"), "elev")
jura <- rbind(sets$jura.pred, sets$jura.val)
for (metal in c("Cd", "Co", "Cr", "Cu", "Ni", "Pb", "Zn")) add(paste("jura,", metal), jura, c("Xloc", "Yloc"), metal)
add("coalash", sets$coalash, c("x", "y"), "coalash")
named <- function(places) {
    frame <- as.data.frame(places)
    names(frame)[names(frame) %in% c("X", "coords.x1")] <- "x"
    names(frame)[names(frame) %in% c("Y", "coords.x2")] <- "y"
    frame
}
add("sic97, rainfall", named(sets$sic_full), c("x", "y"), "rainfall")
add("sic2004, gamma dose", named(sets$sic.val), c("x", "y"), "dayx")
add("walker, V", named(sets$walker), c("x", "y"), "V")
fulmar <- sets$fulmar[sets$fulmar$year == 1999, ]
fulmar$density <- log(fulmar$fulmar + 1)
add("fulmar 1999, log", fulmar, c("x", "y"), "density")
sets$pcb$log <- log(sets$pcb$PCB138)
add("pcb, log", sets$pcb, c("x", "y"), "log")
for (name in c("PCLAY1", "PH1", "MG1")) add(paste("oxford,", name), sets$oxford, c("XCOORD", "YCOORD"), name)
add("topo", topo, c("x", "y"), "z")
add("quakes, depth", quakes, c("long", "lat"), "depth")
add("quakes, magnitude", quakes, c("long", "lat", "depth"), "mag")
grid <- expand.grid(x = seq_len(nrow(volcano)), y = seq_len(ncol(volcano)))
grid$height <- as.vector(volcano)
set.seed(3)
add("volcano, 300 places", grid[sample(nrow(grid), 300), ], c("x", "y"), "height")
cat(sprintf("\nGeometric mean of the ratios: %.3f\n", exp(mean(log(ratios)))))
unlink(folder, recursive = TRUE)

-- Documents whose facts were not taken, and why.
SELECT file, host, moment, state, problem, line, column
FROM (
  SELECT * FROM document WHERE problem != '' ORDER BY hash, written DESC LIMIT 1 BY hash
)
ORDER BY file

-- Documents whose facts were not taken, and why.
SELECT file, coalesce(host.name, ''), moment, state, problem, line, "column"
FROM document LEFT JOIN host ON host.id = document.host
WHERE problem <> ''
ORDER BY file;

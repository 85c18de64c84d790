-- Documents whose facts were not taken, and why.
SELECT folder.text || file, coalesce(host.name, ''), moment, state, problem, line, "column"
FROM document
JOIN value AS folder ON folder.id = folder
LEFT JOIN host ON host.id = document.host
WHERE problem <> ''
ORDER BY 1;

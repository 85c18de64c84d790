select 'a''b', "c""d", [e f], `g`, $t$ ' $t$, E'\'' /* /* */ -- "
 from table(sysproc.f()) x, lateral table ("g"(1, (select 2 from TABLE(h('))')) where 1=1))) join table(i()) y on x.a = y.b

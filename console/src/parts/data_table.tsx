// A table that becomes cards on a narrow screen, with 100 rows at a time.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Table, Tbody, Td, Th, Thead, Tr } from "@patternfly/react-table/dist/esm/components/Table/index.js";
import { memo, useMemo, useState, type ReactNode } from "react";
import { _, fill } from "../host/language.ts";

export interface Column<T> {
    title: string;
    cell: (item: T) => ReactNode;
    /** Smaller first; a column without it is not sorted by. */
    sort?: (a: T, b: T) => number;
}

const kRows = 100;

interface RowProps<T> {
    item: T;
    columns: Column<T>[];
    actions?: (item: T) => ReactNode;
}

function PlainRow<T>({ item, columns, actions }: RowProps<T>) {
    return (
        <Tr>
            {columns.map(column => <Td key={column.title} dataLabel={column.title}>{column.cell(item)}</Td>)}
            {actions ? <Td dataLabel={_("Actions")}><div className="vx-actions">{actions(item)}</div></Td> : null}
        </Tr>
    );
}

// Only the rows whose object has changed are drawn again: a list keeps the objects of lines that are the same.
const Row = memo(PlainRow) as typeof PlainRow;

export function DataTable<T>({ label, rows, rowKey, columns, actions }: {
    label: string; rows: T[]; rowKey: (item: T) => string; columns: Column<T>[]; actions?: (item: T) => ReactNode;
}) {
    const [by, setBy] = useState<{ index: number; direction: "asc" | "desc" } | null>(null);
    const [first, setFirst] = useState(0);
    const sorted = useMemo(() => {
        const sort = by === null ? undefined : columns[by.index]?.sort;
        if (!sort) return rows;
        return [...rows].sort((a, b) => by!.direction === "asc" ? sort(a, b) : sort(b, a));
    }, [rows, columns, by]);
    const begin = first < sorted.length ? first : 0;
    const shown = sorted.slice(begin, begin + kRows);
    return (
        <>
            <Table aria-label={label} variant="compact" gridBreakPoint="grid-lg">
                <Thead>
                    <Tr>
                        {columns.map((column, index) => (
                            <Th key={column.title} sort={column.sort ? {
                                columnIndex: index,
                                sortBy: { index: by?.index, direction: by?.direction },
                                onSort: (_event, at, direction) => setBy({ index: at, direction }),
                            } : undefined}>
                                {column.title}
                            </Th>
                        ))}
                        {actions ? <Th screenReaderText={_("Actions")} /> : null}
                    </Tr>
                </Thead>
                <Tbody>{shown.map(item => <Row key={rowKey(item)} item={item} columns={columns} actions={actions} />)}</Tbody>
            </Table>
            {sorted.length > kRows ? (
                <div className="vx-pages">
                    <Button variant="secondary" size="sm" isDisabled={begin === 0} onClick={() => setFirst(begin - kRows)}>{_("Previous")}</Button>
                    <span>{fill(_("$0 to $1 of $2"), begin + 1, begin + shown.length, sorted.length)}</span>
                    <Button variant="secondary" size="sm" isDisabled={begin + kRows >= sorted.length} onClick={() => setFirst(begin + kRows)}>{_("Next")}</Button>
                </div>
            ) : null}
        </>
    );
}

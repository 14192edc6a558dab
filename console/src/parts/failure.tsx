// Each kind of failure has one way to be shown.
import { Alert, AlertActionLink } from "@patternfly/react-core/dist/esm/components/Alert/index.js";
import { EmptyState, EmptyStateBody } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import { Skeleton } from "@patternfly/react-core/dist/esm/components/Skeleton/index.js";
import ExclamationCircleIcon from "@patternfly/react-icons/dist/esm/icons/exclamation-circle-icon";
import LockIcon from "@patternfly/react-icons/dist/esm/icons/lock-icon";
import PluggedIcon from "@patternfly/react-icons/dist/esm/icons/plug-icon";
import type { ReactNode } from "react";
import type { Failure } from "../model/failure.ts";
import { ago } from "../model/text.ts";
import { _, fill, language } from "../host/language.ts";
import type { List } from "../host/lists.ts";

function Whole({ failure }: { failure: Failure }) {
    switch (failure.kind) {
    case "absent":
        return (
            <EmptyState headingLevel="h2" titleText={_("vexorctl is not installed")} icon={PluggedIcon}>
                <EmptyStateBody>{_("This page asks the RAID controllers by vexorctl. Install the package vexorapi-tools.")}</EmptyStateBody>
            </EmptyState>
        );
    case "denied":
        return (
            <EmptyState headingLevel="h2" titleText={_("Administrative access is needed")} icon={LockIcon}>
                <EmptyStateBody>{_("Turn on administrative access at the top of the window to see the RAID controllers.")}</EmptyStateBody>
            </EmptyState>
        );
    default:
        return (
            <EmptyState headingLevel="h2" titleText={_("The RAID controllers cannot be asked")} icon={ExclamationCircleIcon} status="danger">
                <EmptyStateBody><bdi lang="en">{failure.message}</bdi></EmptyStateBody>
            </EmptyState>
        );
    }
}

/** The warning above what could be read; old data stays, with its age. */
export function FailureAlert({ failure, at, retry }: { failure: Failure; at: number | null; retry?: () => void }) {
    const when = at === null ? null : ago(new Date(at).toISOString(), Date.now(), language());
    const partial = failure.kind === "partial" || failure.kind === "changed";
    return (
        <Alert
            isInline
            component="h2"
            variant={partial ? "warning" : "danger"}
            title={partial ? _("Not everything could be read") : _("What is shown is not up to date")}
            actionLinks={retry && <AlertActionLink onClick={retry}>{_("Try again")}</AlertActionLink>}
        >
            <bdi lang="en">{failure.message}</bdi>
            {!partial && when ? <div>{fill(_("Last read: $0"), when)}</div> : null}
        </Alert>
    );
}

function Loading() {
    return (
        <div className="vx-skeletons" role="status" aria-label={_("Loading")}>
            {["90%", "75%", "85%", "60%"].map(width => <Skeleton key={width} width={width} />)}
        </div>
    );
}

/** The children over the items of a list, whatever has become of it. */
export function Listed<T>({ list, retry, children }: {
    list: List<T>; retry: () => void; children: (items: T[]) => ReactNode;
}) {
    const { items, failure, at } = list;
    if (items === null) {
        if (failure === null) return <Loading />;
        return failure.kind === "broken" || failure.kind === "partial" || failure.kind === "changed"
            ? <FailureAlert failure={failure} at={null} retry={retry} />
            : <Whole failure={failure} />;
    }
    // Nothing at all and a reason for it: an empty list would say that there is nothing.
    if (items.length === 0 && failure && failure.kind !== "partial") return <Whole failure={failure} />;
    return (
        <>
            {failure ? <FailureAlert failure={failure} at={at} retry={retry} /> : null}
            <div className={failure && failure.kind !== "partial" ? "vx-old" : undefined}>{children(items)}</div>
        </>
    );
}
